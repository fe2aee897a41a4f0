#pragma once

#include <optional>
#include <tuple>

#include "CorvaneCore/json/Record.h"

namespace corvane {

/// One touch of the screen: a tap, or a drag when both end members are there. The coordinates are
/// fractions of the upright picture when all of them lie between 0 and 1, else its pixels.
struct Touch {
  double x = 0;
  double y = 0;
  std::optional<double> endX = std::nullopt;
  std::optional<double> endY = std::nullopt;

  [[nodiscard]] bool isDrag() const { return endX && endY; }

  static constexpr auto fields() {
    return FieldList(field("x", &Touch::x), field("y", &Touch::y), field("endX", &Touch::endX),
                     field("endY", &Touch::endY));
  }
};

}  // namespace corvane
