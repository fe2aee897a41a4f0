#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "corvane_standin/capture/StoryPages.h"

namespace corvane::standin {

/// What a page is about.
enum class PageKind {
  homeScreen,
  shopFront,
  walks,
  list,
  product,
  cart,
  empty,
  form,
  /// A dialog that asks for one text, over the page before.
  question,
  search,
  filter,
  settings,
  choice,
  recording,
  notice,
  /// What the page before showed.
  same,
};

/// What the steps of one page, taken together, say of it.
struct PageView {
  std::span<const StepWords> steps;
  Arrival arrival;
  /// Whether the app is one about walks; else it is a shop.
  bool aboutWalks = false;
  /// What the page before was about.
  PageKind before = PageKind::same;

  [[nodiscard]] bool speaksOf(std::initializer_list<std::string_view> words) const;
  [[nodiscard]] bool has(InteractionType type) const;
  /// The first label of this kind.
  [[nodiscard]] std::optional<std::string> named(NamedPart::Kind kind) const;
};

[[nodiscard]] PageKind kindOf(const PageView& page);

/// What stands in the title bar; nothing when the title of the page before stays.
[[nodiscard]] std::optional<std::string> titleOf(const PageView& page, PageKind kind);

}  // namespace corvane::standin
