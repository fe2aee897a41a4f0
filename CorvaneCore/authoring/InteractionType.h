#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

class InteractionDefinition;
struct CheckedStep;

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

/// The parts of the entries below that are code; ConcreteSteps.cpp and CompositionSteps.cpp have
/// those of each type together. A definition is the JSON Schema of the type's steps, without the
/// conditional branch; a rule reports what is wrong with one; a guidance is the hint for its
/// authors; a healing text describes it to an author who repairs a running test.
namespace StepParts {

InteractionDefinition tapDefinition();
InteractionDefinition inputDefinition();
InteractionDefinition scrollDefinition();
InteractionDefinition dragDefinition();
InteractionDefinition visualAssertDefinition();
InteractionDefinition builtInDefinition();
InteractionDefinition delayDefinition();
InteractionDefinition waitToLoadDefinition();
InteractionDefinition runTestDefinition();
InteractionDefinition userDefinedDefinition();
InteractionDefinition reuseStepsDefinition();

void checkQuotedText(const CheckedStep& step);
void checkInput(const CheckedStep& step);
void checkScroll(const CheckedStep& step);
void checkDrag(const CheckedStep& step);
void checkBuiltIn(const CheckedStep& step);
void checkDelay(const CheckedStep& step);
void checkWaitToLoad(const CheckedStep& step);
void checkRunTest(const CheckedStep& step);
void checkUserDefined(const CheckedStep& step);
void checkReuseSteps(const CheckedStep& step);

std::string_view runTestGuidance();
std::string_view userDefinedGuidance();
std::string_view reuseStepsGuidance();
/// Of a type whose schema says all there is to say.
std::string_view noExtraGuidance();

std::string tapHealing();
std::string inputHealing();
std::string scrollHealing();
std::string builtInHealing();
/// Of a type that does not help to repair a running test.
inline constexpr std::string (*neverHeals)() = nullptr;

}  // namespace StepParts

/// One entry per type has all there is to say of it. Whatever lists types, in prose, schemas or
/// messages, takes them from here.
template <>
struct Vocabulary<InteractionType> {
  using Type = InteractionType;

  /// What a step does for its test. Concrete steps act on a control of the screen and so come from
  /// exploration, which sees the screen; composed tests hold them inside branches only and are
  /// offered all the others.
  enum class Role { concrete, probe, command, wait, reference };
  /// What the description of a step holds.
  enum class Description { quotedText, typedText, commandDetail, label, note };
  /// Whether steps take part in conditional branches, as children and as parents. Those that stand
  /// for several steps do not.
  enum class Branching { no, yes };

  struct Row {
    Type value;
    std::string_view rawValue;
    /// The coloured header of the step in the app's editor.
    Required<std::string_view> chipTitle;
    Required<Role> role;
    /// Where the type stands among all when authors are told of them: 0 for the first.
    Required<int> place;
    Required<Description> description;
    Required<Branching> branching;
    Required<InteractionDefinition (*)()> definition;
    Required<void (*)(const CheckedStep&)> rule;
    Required<std::string_view (*)()> guidance;
    Required<std::string (*)()> healing;
  };

  static constexpr std::array rows{
      Row{.value = Type::tap,
          .rawValue = "tap",
          .chipTitle = "TAP",
          .role = Role::concrete,
          .place = 0,
          .description = Description::quotedText,
          .branching = Branching::yes,
          .definition = StepParts::tapDefinition,
          .rule = StepParts::checkQuotedText,
          .guidance = StepParts::noExtraGuidance,
          .healing = StepParts::tapHealing},
      Row{.value = Type::input,
          .rawValue = "input",
          .chipTitle = "KEYBOARD TYPE",
          .role = Role::concrete,
          .place = 1,
          .description = Description::typedText,
          .branching = Branching::yes,
          .definition = StepParts::inputDefinition,
          .rule = StepParts::checkInput,
          .guidance = StepParts::noExtraGuidance,
          .healing = StepParts::inputHealing},
      Row{.value = Type::visualAssert,
          .rawValue = "visualAssert",
          .chipTitle = "VISUAL ASSERT",
          .role = Role::probe,
          .place = 4,
          .description = Description::quotedText,
          .branching = Branching::yes,
          .definition = StepParts::visualAssertDefinition,
          .rule = StepParts::checkQuotedText,
          .guidance = StepParts::noExtraGuidance,
          .healing = StepParts::neverHeals},
      Row{.value = Type::scroll,
          .rawValue = "scroll",
          .chipTitle = "SCROLL",
          .role = Role::concrete,
          .place = 2,
          .description = Description::label,
          .branching = Branching::yes,
          .definition = StepParts::scrollDefinition,
          .rule = StepParts::checkScroll,
          .guidance = StepParts::noExtraGuidance,
          .healing = StepParts::scrollHealing},
      Row{.value = Type::builtIn,
          .rawValue = "builtIn",
          .chipTitle = "BUILT IN",
          .role = Role::command,
          .place = 5,
          .description = Description::commandDetail,
          .branching = Branching::yes,
          .definition = StepParts::builtInDefinition,
          .rule = StepParts::checkBuiltIn,
          .guidance = StepParts::noExtraGuidance,
          .healing = StepParts::builtInHealing},
      Row{.value = Type::delay,
          .rawValue = "delay",
          .chipTitle = "DELAY",
          .role = Role::wait,
          .place = 6,
          .description = Description::label,
          .branching = Branching::yes,
          .definition = StepParts::delayDefinition,
          .rule = StepParts::checkDelay,
          .guidance = StepParts::noExtraGuidance,
          .healing = StepParts::neverHeals},
      Row{.value = Type::waitToLoad,
          .rawValue = "waitToLoad",
          .chipTitle = "WAIT TO LOAD",
          .role = Role::wait,
          .place = 7,
          .description = Description::label,
          .branching = Branching::yes,
          .definition = StepParts::waitToLoadDefinition,
          .rule = StepParts::checkWaitToLoad,
          .guidance = StepParts::noExtraGuidance,
          .healing = StepParts::neverHeals},
      Row{.value = Type::drag,
          .rawValue = "drag",
          .chipTitle = "DRAG",
          .role = Role::concrete,
          .place = 3,
          .description = Description::label,
          .branching = Branching::yes,
          .definition = StepParts::dragDefinition,
          .rule = StepParts::checkDrag,
          .guidance = StepParts::noExtraGuidance,
          .healing = StepParts::neverHeals},
      Row{.value = Type::runTest,
          .rawValue = "runTest",
          .chipTitle = "RUN TEST",
          .role = Role::reference,
          .place = 8,
          .description = Description::label,
          .branching = Branching::yes,
          .definition = StepParts::runTestDefinition,
          .rule = StepParts::checkRunTest,
          .guidance = StepParts::runTestGuidance,
          .healing = StepParts::neverHeals},
      Row{.value = Type::userDefined,
          .rawValue = "userDefined",
          .chipTitle = "USER DEFINED",
          .role = Role::reference,
          .place = 10,
          .description = Description::note,
          .branching = Branching::no,
          .definition = StepParts::userDefinedDefinition,
          .rule = StepParts::checkUserDefined,
          .guidance = StepParts::userDefinedGuidance,
          .healing = StepParts::neverHeals},
      Row{.value = Type::reuseSteps,
          .rawValue = "reuseSteps",
          .chipTitle = "REUSE STEPS",
          .role = Role::reference,
          .place = 9,
          .description = Description::note,
          .branching = Branching::no,
          .definition = StepParts::reuseStepsDefinition,
          .rule = StepParts::checkReuseSteps,
          .guidance = StepParts::reuseStepsGuidance,
          .healing = StepParts::neverHeals},
  };
};

/// The types in the order in which authors are told of them.
[[nodiscard]] consteval auto interactionTypesByPlace() {
  using Words = Vocabulary<InteractionType>;
  std::array<InteractionType, Words::rows.size()> types{};
  std::array<bool, Words::rows.size()> taken{};
  for (const auto& row : Words::rows) {
    const auto place = static_cast<std::size_t>(row.place);
    // Two types in one place do not compile.
    if (std::exchange(taken.at(place), true)) throw "two types stand in one place";
    types.at(place) = row.value;
  }
  return types;
}

/// The names of the types that `keep` accepts, in the order in which authors are told of them,
/// joined with `separator`.
template <class Keep>
[[nodiscard]] std::string listedTypes(std::string_view separator, Keep keep) {
  std::string names;
  for (const InteractionType type : interactionTypesByPlace()) {
    if (!keep(type)) continue;
    if (!names.empty()) names += separator;
    names += rawValue(type);
  }
  return names;
}

[[nodiscard]] constexpr std::string_view chipTitle(InteractionType type) {
  return vocabularyRow(type).chipTitle;
}

/// Whether steps of this type act on a control of the screen.
[[nodiscard]] constexpr bool isConcrete(InteractionType type) {
  return vocabularyRow(type).role == Vocabulary<InteractionType>::Role::concrete;
}

/// Whether steps of this type name something that exists already.
[[nodiscard]] constexpr bool isReference(InteractionType type) {
  return vocabularyRow(type).role == Vocabulary<InteractionType>::Role::reference;
}

[[nodiscard]] constexpr bool isWait(InteractionType type) {
  return vocabularyRow(type).role == Vocabulary<InteractionType>::Role::wait;
}

/// Whether steps of this type may be children of a conditional branch, and have one.
[[nodiscard]] constexpr bool takesPartInBranches(InteractionType type) {
  return vocabularyRow(type).branching == Vocabulary<InteractionType>::Branching::yes;
}

/// Whether an author who repairs a running test may emit steps of this type.
[[nodiscard]] constexpr bool mayHeal(InteractionType type) {
  return vocabularyRow(type).healing != StepParts::neverHeals;
}

}  // namespace corvane
