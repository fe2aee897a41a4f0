#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// When a frame of a capture session was taken.
enum class FrameStatus { beforeStep, afterStep, onFailure };

template <>
struct Vocabulary<FrameStatus> {
  using Row = VocabularyRow<FrameStatus>;
  static constexpr std::array rows{
      Row{FrameStatus::beforeStep, "beforeStep"},
      Row{FrameStatus::afterStep, "afterStep"},
      Row{FrameStatus::onFailure, "onFailure"},
  };
};

}  // namespace corvane
