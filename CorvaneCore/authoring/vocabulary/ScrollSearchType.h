#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// How a scroll step looks for its target: item by item, or anywhere on the screen.
enum class ScrollSearchType { itemScan, general };

template <>
struct Vocabulary<ScrollSearchType> {
  using Row = VocabularyRow<ScrollSearchType>;
  static constexpr std::array rows{
      Row{ScrollSearchType::itemScan, "itemScan"},
      Row{ScrollSearchType::general, "general"},
  };
};

}  // namespace corvane
