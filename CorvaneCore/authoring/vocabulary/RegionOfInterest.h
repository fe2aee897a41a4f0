#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// The part of the screen in which a step looks for its target.
enum class RegionOfInterest {
  all,
  content,
  top20,
  bottom15,
  top33,
  bottom33,
  contentLeading50,
  contentTrailing50,
  contentCenter33,
  top20Leading50,
  top20Trailing50,
  top20Center33,
  bottom15Leading50,
  bottom15Trailing50,
  bottom15Center33,
  top33Leading50,
  top33Trailing50,
  top33Center33,
  bottom33Leading50,
  bottom33Trailing50,
  bottom33Center33,
};

/// A rectangle in normalised screen coordinates: 0 to 1, y measured from the top.
struct NormalizedRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

template <>
struct Vocabulary<RegionOfInterest> {
  using Region = RegionOfInterest;

  /// A stretch of the screen along one axis.
  struct Extent {
    double from;
    double to;
  };
  static constexpr Extent whole{0, 1};
  static constexpr Extent content{0.125, 0.875};
  static constexpr Extent top20{0, 0.2};
  static constexpr Extent bottom15{0.85, 1};
  static constexpr Extent top33{0, 0.33};
  static constexpr Extent bottom33{0.67, 1};
  static constexpr Extent leading50{0, 0.5};
  static constexpr Extent trailing50{0.5, 1};
  static constexpr Extent center33{0.335, 0.665};

  struct Row {
    Region value;
    std::string_view rawValue;
    Extent vertical;
    Extent horizontal;
  };
  static constexpr std::array rows{
      Row{Region::all, "all", whole, whole},
      Row{Region::content, "content", content, whole},
      Row{Region::top20, "top20", top20, whole},
      Row{Region::bottom15, "bottom15", bottom15, whole},
      Row{Region::top33, "top33", top33, whole},
      Row{Region::bottom33, "bottom33", bottom33, whole},
      Row{Region::contentLeading50, "contentLeading50", content, leading50},
      Row{Region::contentTrailing50, "contentTrailing50", content, trailing50},
      Row{Region::contentCenter33, "contentCenter33", content, center33},
      Row{Region::top20Leading50, "top20Leading50", top20, leading50},
      Row{Region::top20Trailing50, "top20Trailing50", top20, trailing50},
      Row{Region::top20Center33, "top20Center33", top20, center33},
      Row{Region::bottom15Leading50, "bottom15Leading50", bottom15, leading50},
      Row{Region::bottom15Trailing50, "bottom15Trailing50", bottom15, trailing50},
      Row{Region::bottom15Center33, "bottom15Center33", bottom15, center33},
      Row{Region::top33Leading50, "top33Leading50", top33, leading50},
      Row{Region::top33Trailing50, "top33Trailing50", top33, trailing50},
      Row{Region::top33Center33, "top33Center33", top33, center33},
      Row{Region::bottom33Leading50, "bottom33Leading50", bottom33, leading50},
      Row{Region::bottom33Trailing50, "bottom33Trailing50", bottom33, trailing50},
      Row{Region::bottom33Center33, "bottom33Center33", bottom33, center33},
  };
};

/// The rectangle that a region covers.
[[nodiscard]] constexpr NormalizedRect normalizedRect(RegionOfInterest region) {
  const auto& row = vocabularyRow(region);
  return {row.horizontal.from, row.vertical.from, row.horizontal.to - row.horizontal.from,
          row.vertical.to - row.vertical.from};
}

}  // namespace corvane
