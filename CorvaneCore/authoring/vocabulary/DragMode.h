#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// Whether a drag step is described in words or given as coordinates.
enum class DragMode { automatic, hardcoded };

template <>
struct Vocabulary<DragMode> {
  using Row = VocabularyRow<DragMode>;
  static constexpr std::array rows{
      Row{DragMode::automatic, "auto"},
      Row{DragMode::hardcoded, "hardcoded"},
  };
};

}  // namespace corvane
