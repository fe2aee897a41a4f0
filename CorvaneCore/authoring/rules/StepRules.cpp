#include "CorvaneCore/authoring/rules/StepRules.h"

#include <algorithm>
#include <array>

#include "CorvaneCore/authoring/rules/BuiltInRules.h"
#include "CorvaneCore/authoring/rules/ParameterRules.h"

namespace corvane {

namespace {

using Code = ValidationIssue::Code;

bool isEmpty(const std::optional<std::string>& field) {
  return !field || field->empty();
}

/// Whether a text holds a quote character of any kind; that they pair up is not asked.
bool hasQuote(std::string_view text) {
  constexpr std::array<std::string_view, 7> quotes{"'", "`", "\"", "‘", "’", "“", "”"};
  return std::any_of(quotes.begin(), quotes.end(), [text](std::string_view quote) {
    return text.find(quote) != std::string_view::npos;
  });
}

void checkQuotedText(const CheckedStep& step) {
  const std::string& description = step.interaction.description;
  if (hasQuote(description)) return;
  step.error(Code::missingQuotedUiText, ".description",
             step.interaction.type +
                 " descriptions must include the visible UI text in quotes. Corvane's text matcher "
                 "accepts single quotes, backticks, double quotes, or smart quotes — pick one. "
                 "Example: \"Button labeled 'Log In'\" or \"Do you see text `Welcome`?\". Got: \"" +
                 description + "\"");
}

void checkInput(const CheckedStep& step) {
  if (!step.interaction.description.empty()) return;
  step.error(Code::emptyInputText, ".description",
             "input.description is the literal text to type and must be non-empty. Use "
             "[[random(N)]] / [[randomDigits(N)]] markers for unique values.");
}

void checkUserDefined(const CheckedStep& step) {
  if (!isEmpty(step.interaction.udiName)) return;
  step.error(Code::missingRequiredField, ".udiName",
             "userDefined requires 'udiName' — the name of an existing user-defined interaction "
             "(see describe_project's userDefinedInteractions).");
}

/// Reports `problem` when the step names no existing test.
void checkReference(const CheckedStep& step, std::string problem) {
  const AgentInteraction& interaction = step.interaction;
  if (!isEmpty(interaction.referencedTestName) || !isEmpty(interaction.referencedTestId)) return;
  step.error(Code::missingRequiredField, ".referencedTestName", std::move(problem));
}

void checkReuseSteps(const CheckedStep& step) {
  checkReference(step,
                 "reuseSteps requires 'referencedTestName' or 'referencedTestId' — the source test "
                 "to clone steps from.");
  const auto& from = step.interaction.fromStep;
  const auto& to = step.interaction.toStep;
  if (!from) {
    step.error(Code::missingRequiredField, ".fromStep",
               "reuseSteps requires 'fromStep' (0-based index into the source test's steps, as "
               "listed by describe_project).");
    return;
  }
  if (*from < 0) step.error(Code::invalidParameterType, ".fromStep", "fromStep must be >= 0.");
  if (to && *to < *from) {
    step.error(Code::invalidParameterType, ".toStep",
               "toStep must be >= fromStep (omit it to reuse the single step at fromStep).");
  }
}

}  // namespace

void checkComposition(const CheckedStep& step) {
  const auto type = step.interaction.knownType();
  if (!type || !isConcrete(*type)) return;
  step.error(Code::compositionOnly, ".type",
             "'" + step.interaction.type +
                 "' is a concrete step — author it with explore_flow (Corvane grounds each step on "
                 "the real screen), then COMPOSE the result here with runTest / userDefined / "
                 "reuseSteps. create_test no longer authors blind taps/inputs/scrolls/drags. "
                 "(Concrete actions are still allowed inside a recovery branch's children to "
                 "dismiss an OS interrupt.)");
}

void checkStep(const CheckedStep& step) {
  const auto type = step.interaction.knownType();
  if (!type) {
    step.error(Code::unknownInteractionType, ".type",
               "Unknown interaction type '" + step.interaction.type +
                   "'. Valid types: " + joinedRawValues<InteractionType>(", "));
    return;
  }
  switch (*type) {
    case InteractionType::tap:
    case InteractionType::visualAssert:
      return checkQuotedText(step);
    case InteractionType::input:
      return checkInput(step);
    case InteractionType::scroll:
      return checkScroll(step);
    case InteractionType::builtIn:
      return checkBuiltIn(step);
    case InteractionType::delay:
      return checkDelay(step);
    case InteractionType::waitToLoad:
      return checkWaitToLoad(step);
    case InteractionType::drag:
      return checkDrag(step);
    case InteractionType::runTest:
      return checkReference(step,
                            "runTest requires either 'referencedTestName' or 'referencedTestId'.");
    case InteractionType::userDefined:
      return checkUserDefined(step);
    case InteractionType::reuseSteps:
      return checkReuseSteps(step);
  }
}

}  // namespace corvane
