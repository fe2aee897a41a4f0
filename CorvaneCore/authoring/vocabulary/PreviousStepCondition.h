#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// Which outcome of the parent step runs a branch child.
enum class PreviousStepCondition { previousSucceeded, previousFailed };

template <>
struct Vocabulary<PreviousStepCondition> {
  using Row = VocabularyRow<PreviousStepCondition>;
  static constexpr std::array rows{
      Row{PreviousStepCondition::previousSucceeded, "previousSucceeded"},
      Row{PreviousStepCondition::previousFailed, "previousFailed"},
  };
};

}  // namespace corvane
