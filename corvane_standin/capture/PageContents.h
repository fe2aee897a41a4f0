#pragma once

#include <string>
#include <vector>

#include "corvane_standin/capture/PageView.h"
#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

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

}  // namespace corvane::standin
