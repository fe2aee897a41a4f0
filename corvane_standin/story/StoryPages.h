#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvane_standin/steps/Steps.h"
#include "corvane_standin/story/Screen.h"

namespace corvane::standin {

/// What led to a page.
struct Arrival {
  enum class Way { start, closed, opened, tab, product, row, button, search, otherSteps, back };

  Way way = Way::start;
  /// The label of what was tapped.
  std::string label;
};

/// Steps that are taken on one page of an app, one after the other: all but the last leave it in
/// sight.
struct PageSteps {
  std::size_t first = 0;
  std::size_t end = 0;
  Arrival arrival;

  [[nodiscard]] bool has(std::size_t step) const { return step >= first && step < end; }
};

/// Divides the steps of a test into pages. The last page is the one that the last step leads to or
/// leaves in sight, and may be without steps.
[[nodiscard]] std::vector<PageSteps> pagesOf(const std::vector<StepWords>& steps);

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
  [[nodiscard]] bool has(ScreenAct act) const;
  /// The first label of this kind.
  [[nodiscard]] std::optional<std::string> named(NamedPart::Kind kind) const;
};

[[nodiscard]] PageKind kindOf(const PageView& page);

/// What stands in the title bar; nothing when the title of the page before stays.
[[nodiscard]] std::optional<std::string> titleOf(const PageView& page, PageKind kind);

/// What an app knows by the time a page comes up.
struct StorySoFar {
  /// What was last typed, e.g. to search for or as a voucher.
  std::string lastTyped;
  /// Whether the bill is wrong, because that is what the test is going to find.
  bool wrongTotal = false;
  bool inMiles = false;
  bool walkSaved = false;
};

/// The elements of a page of this kind, before those that steps name are added.
[[nodiscard]] std::vector<Element> contentsOf(PageKind kind, const PageView& page,
                                              const std::string& title, const StorySoFar& story);

/// A product, shown as a card of a grid or a row of a list.
[[nodiscard]] Element goodsElement(Element::Kind kind, std::string_view name);

/// The element with this label, and of this kind when one is given; capitals do not matter.
[[nodiscard]] std::optional<std::size_t> findElement(
    const Screen& screen, std::string_view label, std::optional<Element::Kind> kind = std::nullopt);

/// Makes sure that what `step` speaks of is on the screen of a page.
void addNamedPart(Screen& screen, const NamedPart& part, const StepWords& step, PageKind page);

/// Where the named part is on the screen; nothing when it is not there.
[[nodiscard]] std::optional<Target> targetOf(const Screen& screen, const NamedPart& part);

/// Changes a screen the way a step does that leaves its page in sight: types, scrolls, flips,
/// swipes a row aside so that `underRow`, a button, comes out.
void applyStep(Screen& screen, const StepWords& step, const std::optional<Target>& target,
               const std::string& underRow);

}  // namespace corvane::standin
