#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// A page of an app, and what leads to it.
struct Page {
  std::string_view title;
  /// What the labels begin with that open it when they are tapped, separated by commas.
  std::string_view labels;
  /// The name of the kind that opens it whatever its label.
  std::string_view opener;
  /// The words in a command to the phone, or in a step made of other steps, that open it.
  std::string_view words;
  /// As elementsOf() reads them. A "$name" here or in the title stands for what the story so far
  /// has there: the label that was `tapped` and the `price` beside it, what was last `typed`, the
  /// row that was `chosen`, the `total` of a bill or the name of the `app`.
  std::string_view elements;
};

struct App {
  std::string_view tabs;
  /// The app begins with the first page, the phone with the last one, its own screen.
  std::span<const Page> pages;
};

/// The made-up app that is shown for one of this name.
[[nodiscard]] const App& appCalled(std::string_view name);

[[nodiscard]] std::string_view nameOf(Element::Kind kind);

/// Reads "kind label = detail | kind! label": with "!" an element is strong. Throws
/// std::logic_error for a kind that there is not.
[[nodiscard]] std::vector<Element> elementsOf(std::string_view text);

/// What an element stands for: itself or, for a card or an item without a detail, all of this name
/// or group. Capitals do not matter.
[[nodiscard]] std::vector<Element> itemsFor(const Element& element);

}  // namespace corvane::standin
