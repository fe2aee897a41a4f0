#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// The mobile platform under test.
enum class AgentTargetPlatform { iOS, android };

template <>
struct Vocabulary<AgentTargetPlatform> {
  using Row = VocabularyRow<AgentTargetPlatform>;
  static constexpr std::array rows{
      Row{AgentTargetPlatform::iOS, "iOS"},
      Row{AgentTargetPlatform::android, "android"},
  };
};

}  // namespace corvane
