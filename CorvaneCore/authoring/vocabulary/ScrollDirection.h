#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// Which way a scroll step moves through the contents.
enum class ScrollDirection { automatic, up, down, left, right };

template <>
struct Vocabulary<ScrollDirection> {
  using Row = VocabularyRow<ScrollDirection>;
  static constexpr std::array rows{
      Row{ScrollDirection::automatic, "auto"}, Row{ScrollDirection::up, "up"},
      Row{ScrollDirection::down, "down"},      Row{ScrollDirection::left, "left"},
      Row{ScrollDirection::right, "right"},
  };
};

}  // namespace corvane
