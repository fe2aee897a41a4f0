#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// How fast a scroll step moves.
enum class ScrollSpeed { automatic, ultraSlow, slow, normal, fast, ultraFast };

template <>
struct Vocabulary<ScrollSpeed> {
  using Row = VocabularyRow<ScrollSpeed>;
  static constexpr std::array rows{
      Row{ScrollSpeed::automatic, "auto"}, Row{ScrollSpeed::ultraSlow, "ultraSlow"},
      Row{ScrollSpeed::slow, "slow"},      Row{ScrollSpeed::normal, "normal"},
      Row{ScrollSpeed::fast, "fast"},      Row{ScrollSpeed::ultraFast, "ultraFast"},
  };
};

}  // namespace corvane
