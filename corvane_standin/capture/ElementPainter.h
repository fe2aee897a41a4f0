#pragma once

#include "corvane_standin/capture/Brush.h"
#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// How high an element is on a page `width` wide.
[[nodiscard]] double heightOf(const Element& element, double width, Lettering& letters);

/// Whether an element shares its line with one of its kind.
[[nodiscard]] inline bool isHalfWide(const Element& element) {
  return element.kind == Element::Kind::card;
}

/// Whether an element stays at the foot of a page: buttons and bills do.
[[nodiscard]] inline bool isAtFoot(const Element& element) {
  return element.kind == Element::Kind::amount || element.kind == Element::Kind::button ||
         element.kind == Element::Kind::roundButton;
}

/// Paints an element into `area` and says where a finger would touch it.
Rect paintElement(const Element& element, Rect area, const Brush& brush);

}  // namespace corvane::standin
