#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// Whether AI segmentation helps a step to find its target.
enum class AISegmentationMode { none, automatic, forceFresh };

template <>
struct Vocabulary<AISegmentationMode> {
  using Row = VocabularyRow<AISegmentationMode>;
  static constexpr std::array rows{
      Row{AISegmentationMode::none, "none"},
      Row{AISegmentationMode::automatic, "auto"},
      Row{AISegmentationMode::forceFresh, "forceFresh"},
  };
};

}  // namespace corvane
