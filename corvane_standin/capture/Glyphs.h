#pragma once

#include <string_view>

namespace corvane::standin {

/// How a letter is drawn: strokes in a grid in which capitals are 14 high and small letters 10,
/// from the baseline up and from the letter's left end to the right. A few commands, each with
/// numbers after it: M x y begins a stroke, L x y leads on to a point and Q x y x y to one along a
/// curve, A x y rx ry from to along an ellipse between two angles, O x y rx ry is a whole ellipse,
/// and a semicolon ends a stroke. A character that is not known is a box.
[[nodiscard]] std::string_view glyphStrokes(char32_t character);

/// The mark and the letter below it that `character` is composed of; the character itself and no
/// mark when it is not composed.
struct ComposedLetter {
  char32_t letter;
  char32_t mark = 0;
};
[[nodiscard]] ComposedLetter composedLetter(char32_t character);

}  // namespace corvane::standin
