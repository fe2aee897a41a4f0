#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// An element of a page. A "$name" in its texts stands for what the story so far has there: the
/// label that was `tapped` and the `price` beside it, what was last `typed`, the row that was
/// `chosen` or the name of the `app`. Cards, goods and walks without a detail stand for all items
/// of this name or group, or for all there are.
struct PagePart {
  Element::Kind kind;
  std::string_view label;
  std::string_view detail = {};
  bool strong = false;
  /// What stands for the detail in a test that finds a defect; the same when empty.
  std::string_view defect = {};
};

/// A page of an app, and what leads to it.
struct Page {
  /// May have a "$name" in it.
  std::string_view title = "$app";
  /// What the labels begin with that open it when they are tapped, separated by commas.
  std::string_view labels = {};
  /// What opens it whatever its label.
  std::optional<Element::Kind> opener = std::nullopt;
  /// The words in a command to the phone, or in a step made of other steps, that open it.
  std::string_view words = {};
  std::span<const PagePart> parts = {};
};

struct App {
  /// An app is this one when its name has one of these words in it.
  std::string_view words;
  std::span<const PagePart> tabs;
  /// The app begins with the first page, the phone with the last one, its own screen.
  std::span<const Page> pages;
};

/// The made-up apps; the last one stands for every other.
[[nodiscard]] std::span<const App> apps();

/// What an element stands for: itself, or cards, goods or walks. Capitals do not matter.
[[nodiscard]] std::vector<Element> itemsFor(Element element);

}  // namespace corvane::standin
