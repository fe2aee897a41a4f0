#include <algorithm>
#include <array>

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/InteractionDefinition.h"
#include "CorvaneCore/authoring/TestValidator.h"
#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/json/JsonScalars.h"
#include "CorvaneCore/text/Unicode.h"

// The step types that tests are composed of.
namespace corvane {

namespace {

using namespace SchemaParts;
using Definition = InteractionDefinition;
using Description = InteractionDefinition::Description;
using Code = ValidationIssue::Code;

/// Whether a text holds a quote character of any kind; that they pair up is not asked.
bool hasQuote(std::string_view text) {
  constexpr std::array<std::string_view, 7> quotes{"'", "`", "\"", "‘", "’", "“", "”"};
  return std::any_of(quotes.begin(), quotes.end(), [text](std::string_view quote) {
    return text.find(quote) != std::string_view::npos;
  });
}

}  // namespace

InteractionDefinition StepParts::visualAssertDefinition() {
  return Definition(InteractionType::visualAssert,
                    "A yes/no question about the current screen that quotes the visible text, e.g. "
                    "\"Do you see text `Welcome`?\". The step passes when the answer is yes.",
                    Description::required)
      .commonFlags();
}

void StepParts::checkQuotedText(const CheckedStep& step) {
  const std::string& description = step.interaction.description;
  if (hasQuote(description)) return;
  step.error(Code::missingQuotedUiText, ".description",
             step.interaction.type +
                 " descriptions must include the visible UI text in quotes. Corvane's text matcher "
                 "accepts single quotes, backticks, double quotes, or smart quotes — pick one. "
                 "Example: \"Button labeled 'Log In'\" or \"Do you see text `Welcome`?\". Got: \"" +
                 description + "\"");
}

InteractionDefinition StepParts::builtInDefinition() {
  const auto isUsable = [](BuiltInCommand command) { return command != BuiltInCommand::none; };
  return Definition(
             InteractionType::builtIn,
             "terminateApplication kills the app. openApplication launches it (description must be "
             "'{{APP_NAME}}'). openUrl opens the URL that the description holds (a `$paramName` "
             "placeholder is fine). hitBackspaceKey deletes as many characters as the description "
             "says, a "
             "positive integer as a string, e.g. \"5\". The description of every other command is "
             "the "
             "empty string: goHome shows the home screen, goBack goes back (Android only), "
             "hitReturnKey "
             "presses Return, clearText empties the focused field, tapToDismiss taps beside a "
             "menu, "
             "popover or keyboard to close it.",
             Description::required)
      .parameters({{"command", wordOf<BuiltInCommand>("What the step does.", isUsable)}},
                  {"command"});
}

namespace {

constexpr std::string_view commandPlace = ".parameters.command";

void checkOpenApplication(const CheckedStep& step) {
  if (step.interaction.description == AuthoringTerms::appNamePlaceholder) return;
  step.error(Code::wrongAppNamePlaceholder, ".description",
             "openApplication.description must be exactly '{{APP_NAME}}'. Corvane substitutes the "
             "real bundle name after building.",
             AuthoringTerms::appNamePlaceholder);
}

void checkOpenUrl(const CheckedStep& step) {
  if (!trimWhitespace(step.interaction.description).empty()) return;
  step.error(Code::missingRequiredField, ".description",
             std::string("openUrl.description must be a URL (e.g. \"") +
                 AuthoringTerms::exampleUrl + "\") or a `$paramName` placeholder.",
             AuthoringTerms::exampleUrl);
}

void checkBackspaceCount(const CheckedStep& step) {
  const std::string& description = step.interaction.description;
  if (parseInteger(trimWhitespace(description)).value_or(0) > 0) return;
  step.error(Code::invalidBackspaceCount, ".description",
             "hitBackspaceKey.description must be a positive integer count, e.g. \"5\". Got: \"" +
                 description + "\"");
}

void checkGoBack(const CheckedStep& step) {
  if (step.platform == AgentTargetPlatform::android) return;
  step.error(Code::androidOnlyCommand, commandPlace,
             "goBack is Android-only. On iOS, use a tap/scroll back gesture or rely on "
             "tap-on-back-button.");
}

}  // namespace

void StepParts::checkBuiltIn(const CheckedStep& step) {
  const auto* raw = step.interaction.parameter<std::string>("command");
  if (!raw) {
    step.error(Code::missingRequiredField, commandPlace,
               "builtIn interactions require parameters.command. Valid: " +
                   joinedRawValues<BuiltInCommand>(", "));
    return;
  }
  const auto command = fromRawValue<BuiltInCommand>(*raw);
  if (!command) {
    step.error(
        Code::invalidEnumValue, commandPlace,
        "Unknown builtIn command '" + *raw + "'. Valid: " + joinedRawValues<BuiltInCommand>(", "));
    return;
  }
  switch (*command) {
    case BuiltInCommand::none:
      return step.error(Code::invalidEnumValue, commandPlace,
                        "builtIn command 'none' is not a valid command.");
    case BuiltInCommand::openApplication:
      return checkOpenApplication(step);
    case BuiltInCommand::openUrl:
      return checkOpenUrl(step);
    case BuiltInCommand::hitBackspaceKey:
      return checkBackspaceCount(step);
    case BuiltInCommand::goBack:
      return checkGoBack(step);
    case BuiltInCommand::terminateApplication:
    case BuiltInCommand::goHome:
    case BuiltInCommand::hitReturnKey:
    case BuiltInCommand::clearText:
    case BuiltInCommand::tapToDismiss:
      return;
  }
}

std::string StepParts::builtInHealing() {
  return "\n  parameters.command: one of " + joinedRawValues<BuiltInCommand>(", ", mayRunMidTest) +
         ". goBack is Android-only.\n  description: openUrl: the URL. hitBackspaceKey: a positive "
         "integer count as a string, e.g. \"5\". Every other command: empty.";
}

namespace {

bool hasKey(const CheckedStep& step, std::string_view key) {
  const auto& parameters = step.interaction.parameters;
  return parameters && parameters->find(key);
}

bool hasNumber(const CheckedStep& step, std::string_view key) {
  const auto& parameters = step.interaction.parameters;
  return parameters && numberAt(*parameters, key);
}

}  // namespace

InteractionDefinition StepParts::delayDefinition() {
  return Definition(InteractionType::delay, Definition::optionalLabel, Description::optional)
      .parameters(
          {{"seconds",
            with(ofType("number",
                        "Number of seconds to pause unconditionally. Field is 'seconds', NOT "
                        "'totalSeconds' (which belongs to waitToLoad)."),
                 "minimum", 0)}},
          {"seconds"});
}

void StepParts::checkDelay(const CheckedStep& step) {
  if (hasKey(step, "totalSeconds")) {
    step.error(Code::unknownParameter, ".parameters.totalSeconds",
               "delay does not accept 'totalSeconds' (that belongs to waitToLoad). Use 'seconds'.");
  }
  if (!hasNumber(step, "seconds")) {
    step.error(Code::missingRequiredField, ".parameters.seconds",
               "delay requires parameters.seconds (a non-negative number, e.g. 1.5).");
  }
}

InteractionDefinition StepParts::waitToLoadDefinition() {
  constexpr int longestWait = 600;
  return Definition(InteractionType::waitToLoad, Definition::optionalLabel, Description::optional)
      .parameters(
          {{"totalSeconds",
            with(
                with(ofType("number",
                            "Max seconds to wait (cap 600). Field is 'totalSeconds', NOT 'seconds' "
                            "(which belongs to delay). Choose it tight, e.g. 5 to 20: an over-long "
                            "wait freezes the run's progress feedback for as long as it lasts."),
                     "minimum", 0),
                "maximum", longestWait)},
           {"until",
            ofType("string",
                   "Optional yes/no condition phrased as a visual question. Example: \"Is the "
                   "loading spinner gone?\". When omitted, Corvane waits for the generic "
                   "splash/skeleton screen to disappear.")}},
          {"totalSeconds"});
}

void StepParts::checkWaitToLoad(const CheckedStep& step) {
  if (hasKey(step, "seconds")) {
    step.error(Code::unknownParameter, ".parameters.seconds",
               "waitToLoad does not accept 'seconds' (that belongs to delay). Use "
               "'totalSeconds'.");
  }
  if (!hasNumber(step, "totalSeconds")) {
    step.error(Code::missingRequiredField, ".parameters.totalSeconds",
               "waitToLoad requires parameters.totalSeconds (max seconds to wait, e.g. 5).");
  }
}

namespace {

/// Adds the two ways to name an existing test.
Definition withReference(Definition definition) {
  return std::move(definition)
      .property("referencedTestId",
                ofType("string",
                       "UUID of the existing test, from describe_project. This or "
                       "referencedTestName is required."))
      .property("referencedTestName",
                ofType("string",
                       "Exact name of the existing test, from describe_project. This or "
                       "referencedTestId is required."));
}

/// Reports `problem` when the step names no existing test.
void checkReference(const CheckedStep& step, std::string problem) {
  const AgentInteraction& interaction = step.interaction;
  if (!isMissing(interaction.referencedTestName) || !isMissing(interaction.referencedTestId))
    return;
  step.error(Code::missingRequiredField, ".referencedTestName", std::move(problem));
}

}  // namespace

InteractionDefinition StepParts::runTestDefinition() {
  return withReference(
             Definition(InteractionType::runTest,
                        "Optional display string. Corvane regenerates it from the referenced test.",
                        Description::optional))
      .property("arguments",
                with(ofType("object",
                            "Values for the parameters that the referenced test declares. Keys are "
                            "parameter names without the $."),
                     "additionalProperties", JsonObject{{"type", "string"}}));
}

void StepParts::checkRunTest(const CheckedStep& step) {
  checkReference(step, "runTest requires either 'referencedTestName' or 'referencedTestId'.");
}

std::string_view StepParts::runTestGuidance() {
  return R"(Invokes another existing test inline, at this point of the test, and records it as a run of its own. Identify it by `referencedTestId` (its UUID) or by `referencedTestName` (its exact name); describe_project lists both. `arguments` hands it values for the parameters that it declares, by parameter name without the $. Use it to chain proven flows and, as a previousFailed child of a visualAssert probe, as the recovery of a state router.)";
}

InteractionDefinition StepParts::userDefinedDefinition() {
  return Definition(InteractionType::userDefined,
                    "Optional display note. Corvane shows the UDI's own name on the tile.",
                    Description::optional)
      .property("udiName", ofType("string",
                                  "REQUIRED. Name of the reusable building block (UDI), exactly as "
                                  "describe_project lists it."));
}

void StepParts::checkUserDefined(const CheckedStep& step) {
  if (!isMissing(step.interaction.udiName)) return;
  step.error(Code::missingRequiredField, ".udiName",
             "userDefined requires 'udiName' — the name of an existing user-defined interaction "
             "(see describe_project's userDefinedInteractions).");
}

std::string_view StepParts::userDefinedGuidance() {
  return R"(Embeds a reusable building block (UDI) of the user's library, identified by `udiName`, exactly as describe_project lists it. Its steps run inline, so several building blocks compose into one test and one run. The library belongs to the user, not to a project: before you embed a building block, check in describe_project that it was made for this app. Top level only.)";
}

InteractionDefinition StepParts::reuseStepsDefinition() {
  return withReference(
             Definition(InteractionType::reuseSteps,
                        "Optional display note, e.g. \"Reach the Input tab\". Corvane regenerates "
                        "labels from the cloned steps.",
                        Description::optional))
      .property("fromStep",
                with(ofType("integer",
                            "0-based index of the FIRST step to clone, matching the source test's "
                            "step order in describe_project."),
                     "minimum", 0))
      .property("toStep", with(ofType("integer",
                                      "0-based index of the LAST step to clone (inclusive). Omit "
                                      "to clone the single step at fromStep."),
                               "minimum", 0));
}

void StepParts::checkReuseSteps(const CheckedStep& step) {
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

std::string_view StepParts::reuseStepsGuidance() {
  return R"(Clones a contiguous range of steps of an existing test, identified by `referencedTestId` (its UUID) or by `referencedTestName` (its exact name). `fromStep` and `toStep` are 0-based and inclusive and count the steps as describe_project lists them; omit `toStep` to clone the single step at `fromStep`. The clones keep their prompts verbatim and each step's learned position memory. Use it to reach a screen that a proven test already reaches. Top level only.)";
}

}  // namespace corvane
