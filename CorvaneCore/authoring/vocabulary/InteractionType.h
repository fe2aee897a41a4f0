#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// The kinds of steps that a test is made of.
enum class InteractionType {
  tap,
  input,
  visualAssert,
  scroll,
  builtIn,
  delay,
  waitToLoad,
  drag,
  runTest,
  userDefined,
  reuseSteps,
};

template <>
struct Vocabulary<InteractionType> {
  using Type = InteractionType;
  /// Who writes steps of a type at the top level of a test.
  enum class Author { exploration, composition };
  /// Whether a step of a type may be the child of a conditional branch.
  enum class InBranch { no, yes };

  struct Row {
    Type value;
    std::string_view rawValue;
    /// The coloured header of the step in the app's editor.
    std::string_view chipTitle;
    Author author;
    InBranch inBranch;
  };
  static constexpr std::array rows{
      Row{Type::tap, "tap", "TAP", Author::exploration, InBranch::yes},
      Row{Type::input, "input", "KEYBOARD TYPE", Author::exploration, InBranch::yes},
      Row{Type::visualAssert, "visualAssert", "VISUAL ASSERT", Author::composition, InBranch::yes},
      Row{Type::scroll, "scroll", "SCROLL", Author::exploration, InBranch::yes},
      Row{Type::builtIn, "builtIn", "BUILT IN", Author::composition, InBranch::yes},
      Row{Type::delay, "delay", "DELAY", Author::composition, InBranch::yes},
      Row{Type::waitToLoad, "waitToLoad", "WAIT TO LOAD", Author::composition, InBranch::yes},
      Row{Type::drag, "drag", "DRAG", Author::exploration, InBranch::yes},
      Row{Type::runTest, "runTest", "RUN TEST", Author::composition, InBranch::yes},
      Row{Type::userDefined, "userDefined", "USER DEFINED", Author::composition, InBranch::no},
      Row{Type::reuseSteps, "reuseSteps", "REUSE STEPS", Author::composition, InBranch::no},
  };
};

[[nodiscard]] constexpr std::string_view chipTitle(InteractionType type) {
  return vocabularyRow(type).chipTitle;
}

/// Whether steps of this type act on a control of the screen and so come from exploration, which
/// sees the screen; a composed test holds them inside branches only.
[[nodiscard]] constexpr bool isConcrete(InteractionType type) {
  return vocabularyRow(type).author == Vocabulary<InteractionType>::Author::exploration;
}

[[nodiscard]] constexpr bool mayBeBranchChild(InteractionType type) {
  return vocabularyRow(type).inBranch == Vocabulary<InteractionType>::InBranch::yes;
}

}  // namespace corvane
