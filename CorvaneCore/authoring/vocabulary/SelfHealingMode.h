#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// Whether Corvane adapts a test while it runs. (The editor knows a third, per-step mode, which the
/// payload cannot express.)
enum class SelfHealingMode { off, fullTest };

template <>
struct Vocabulary<SelfHealingMode> {
  using Row = VocabularyRow<SelfHealingMode>;
  static constexpr std::array rows{
      Row{SelfHealingMode::off, "off"},
      Row{SelfHealingMode::fullTest, "fullTest"},
  };
};

}  // namespace corvane
