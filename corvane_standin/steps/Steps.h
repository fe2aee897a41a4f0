#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/InteractionType.h"

namespace corvane::standin {

/// What a step does at the screen of a phone.
enum class ScreenAct {
  look,
  tap,
  type,
  scroll,
  drag,
  /// A key or a command of the phone, e.g. going back.
  command,
  wait,
  fillForm,
  /// What other steps do, which are written down elsewhere.
  otherSteps,
};

/// Everything that the stand-in knows about the steps of an interaction type.
struct StepType {
  enum class Reference { none, test, stepsOfTest, buildingBlock };
  /// What of a goal's clause describes the step that it becomes.
  enum class GoalText { clause, typedText, withoutVerb };

  InteractionType type;
  ScreenAct act;
  Reference reference;
  /// The verbs, in lower case and separated by spaces, that make such a step of a goal's clause.
  std::string_view goalVerbs;
  GoalText goalText;
  /// What the app shows for a step: mostly the author's own description where there is one.
  /// `testName` is the name of the test that it refers to, if any.
  std::string (*reading)(const AgentInteraction& step, const std::string& testName);
};

[[nodiscard]] const StepType& stepType(InteractionType type);

/// The type of the step that a clause of a goal beginning with `verb`, in lower case, becomes: a
/// tap, unless the verb is known.
[[nodiscard]] const StepType& stepTypeOfVerb(std::string_view verb);

/// The header of a step of the given interaction type, e.g. "VISUAL ASSERT"; a type that this build
/// does not know stands for itself.
[[nodiscard]] std::string stepTitle(const std::string& interactionType);

/// The words of a text that are separated by `separator`, without white space around them; empty
/// ones are left out.
[[nodiscard]] std::vector<std::string_view> split(std::string_view text,
                                                  std::string_view separator = " ");

/// Whether `word` is one of `words`, which are separated by spaces.
[[nodiscard]] bool isOneOf(std::string_view words, std::string_view word);

/// `text` with its first letter as a capital, if that is one of ASCII.
[[nodiscard]] std::string capitalised(std::string text);

/// The names of the "$name" placeholders of `text` in their order, each as often as it appears. A
/// name begins with a letter or "_", so that a price is none.
[[nodiscard]] std::vector<std::string> placeholdersIn(std::string_view text);

/// `text` with every "$name" whose name is a key of `values` replaced by its value; the values
/// themselves are not looked into.
[[nodiscard]] std::string substituteParameters(std::string_view text,
                                               const std::map<std::string, std::string>& values);

}  // namespace corvane::standin
