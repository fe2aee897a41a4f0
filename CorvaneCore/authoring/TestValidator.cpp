#include "CorvaneCore/authoring/TestValidator.h"

#include <algorithm>
#include <functional>
#include <set>

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/json/LenientReading.h"

namespace corvane {

namespace {

using Code = ValidationIssue::Code;
using AuthoringTerms::appNamePlaceholder;

bool builds(const AgentTestSchema& payload) {
  return payload.buildFirst.value_or(true);
}

void checkIosFields(const AgentTestSchema& payload, ValidationResult& result) {
  if (isMissing(payload.iosProjectPath) && builds(payload)) {
    result.addError(Code::missingRequiredField, "iosProjectPath",
                    std::string("iOS targets require 'iosProjectPath' when Corvane builds. To run "
                                "a binary already installed on the simulator — your own build, or "
                                "a preinstalled system app like ") +
                        AuthoringTerms::systemMapsIdentifier +
                        " — pass buildFirst:false and omit the path.");
  }
  if (isMissing(payload.bundleIdentifier)) {
    result.addError(Code::missingRequiredField, "bundleIdentifier",
                    std::string("iOS targets require 'bundleIdentifier' (e.g. ") +
                        AuthoringTerms::exampleIdentifier + ").");
  }
  if (payload.androidProjectPath || payload.applicationId) {
    result.addWarning(Code::platformFieldMismatch, "androidProjectPath",
                      "Android fields are ignored when targetPlatform is iOS.");
  }
}

/// iOS fields on an Android payload draw no warning, unlike the other way round.
void checkAndroidFields(const AgentTestSchema& payload, ValidationResult& result) {
  if (isMissing(payload.androidProjectPath) && builds(payload)) {
    result.addError(Code::missingRequiredField, "androidProjectPath",
                    "Android targets require 'androidProjectPath' when Corvane builds. To run an "
                    "APK already installed on the emulator — your own build, or a preinstalled app "
                    "— pass buildFirst:false and omit the path.");
  }
  if (isMissing(payload.applicationId)) {
    result.addError(Code::missingRequiredField, "applicationId",
                    std::string("Android targets require 'applicationId' (e.g. ") +
                        AuthoringTerms::exampleIdentifier + ").");
  }
}

/// The platform that a payload is checked for: everything but exactly "android" is iOS.
AgentTargetPlatform platformOf(const AgentTestSchema& payload) {
  return payload.targetPlatform == rawValue(AgentTargetPlatform::android)
             ? AgentTargetPlatform::android
             : AgentTargetPlatform::iOS;
}

/// Whether the payload says enough to find, build and start the app under test.
void checkPlatformFields(const AgentTestSchema& payload, AgentTargetPlatform platform,
                         ValidationResult& result) {
  if (platform == AgentTargetPlatform::android) {
    checkAndroidFields(payload, result);
  } else {
    checkIosFields(payload, result);
  }
}

AnyCodable bookend(BuiltInCommand command, std::string_view description) {
  return JsonObject{{"type", rawValue(InteractionType::builtIn)},
                    {"description", description},
                    {"parameters", JsonObject{{"command", rawValue(command)}}}};
}

AnyCodable terminateStep() {
  return bookend(BuiltInCommand::terminateApplication, "");
}

AnyCodable openStep() {
  return bookend(BuiltInCommand::openApplication, appNamePlaceholder);
}

std::string place(const std::string& path, std::size_t position) {
  return path + "[" + std::to_string(position) + "]";
}

void checkSecond(const AgentTest& test, const std::string& path, ValidationResult& result) {
  const AgentInteraction& second = test.interactions[1];
  if (!second.isCommand(BuiltInCommand::openApplication)) {
    result.addError(Code::missingSecondInteraction, place(path, 1),
                    "Test '" + test.name +
                        "' second interaction must be builtIn/openApplication with description "
                        "'{{APP_NAME}}'.",
                    openStep());
  } else if (second.description != appNamePlaceholder) {
    result.addError(Code::wrongAppNamePlaceholder, place(path, 1) + ".description",
                    "openApplication description must be the literal string '{{APP_NAME}}'. "
                    "Corvane replaces this placeholder after building the app and resolving its "
                    "bundle/display name.",
                    appNamePlaceholder);
  }
}

/// Whether a test with at least one step begins by terminating and opening the app and ends by
/// terminating it. `path` is the place of its interactions.
void checkBookends(const AgentTest& test, const std::string& path, ValidationResult& result) {
  const auto& steps = test.interactions;
  if (!steps.front().isCommand(BuiltInCommand::terminateApplication)) {
    result.addError(Code::missingFirstInteraction, place(path, 0),
                    "Test '" + test.name +
                        "' must start with a builtIn/terminateApplication interaction (clean-slate "
                        "guarantee).",
                    terminateStep());
  }
  // The only step of a test is its first and its last: one terminate step is a sound test.
  if (steps.size() >= 2) checkSecond(test, path, result);
  if (!steps.back().isCommand(BuiltInCommand::terminateApplication)) {
    result.addError(Code::missingLastInteraction, place(path, steps.size() - 1),
                    "Test '" + test.name +
                        "' must end with a builtIn/terminateApplication interaction so the "
                        "simulator is left clean.",
                    terminateStep());
  }
}

/// Whether a top-level step is one that a composed test may hold.
void checkComposition(const CheckedStep& step) {
  const auto type = step.interaction.knownType();
  if (!type || !isConcrete(*type)) return;
  step.error(Code::compositionOnly, ".type",
             "'" + step.interaction.type +
                 "' is a concrete step — author it with explore_flow (Corvane grounds each step on "
                 "the real screen), then COMPOSE the result here with " +
                 joinedRawValues<InteractionType>(" / ", isReference) +
                 ". create_test no longer authors blind taps/inputs/scrolls/drags. (Concrete "
                 "actions are still allowed inside a recovery branch's children to dismiss an OS "
                 "interrupt.)");
}

/// The rules that belong to the type of a step, at the top level and in branches alike.
void checkStep(const CheckedStep& step) {
  if (const auto type = step.interaction.knownType()) return vocabularyRow(*type).rule(step);
  step.error(Code::unknownInteractionType, ".type",
             "Unknown interaction type '" + step.interaction.type +
                 "'. Valid types: " + joinedRawValues<InteractionType>(", "));
}

/// The command of a step when it starts or ends the app.
std::optional<BuiltInCommand> lifecycleCommand(const AgentInteraction& interaction) {
  const auto command = interaction.command();
  return command && isLifecycle(*command) ? command : std::nullopt;
}

void checkTopLevelCondition(const CheckedStep& step) {
  const auto& condition = step.interaction.previousStepCondition;
  if (!condition) return;
  if (*condition == rawValue(PreviousStepCondition::previousFailed)) {
    step.error(Code::invalidConditionalStructure, ".previousStepCondition",
               "previousStepCondition on a TOP-LEVEL step is ignored by the runtime — this step "
               "would run unconditionally, not on failure. To run steps when another step fails, "
               "nest them as that step's `children` with previousStepCondition 'previousFailed' "
               "(the recovery branch).");
  } else {
    step.warning(Code::invalidConditionalStructure, ".previousStepCondition",
                 "previousStepCondition has no effect on a top-level step (steps already run in "
                 "order). It selects branch membership for `children` only — drop it here.");
  }
}

void checkParent(const CheckedStep& step) {
  const auto command = lifecycleCommand(step.interaction);
  if (!step.interaction.hasChildren() || !command) return;
  step.error(Code::invalidConditionalStructure, ".children",
             std::string("builtIn/").append(rawValue(*command)) +
                 " cannot carry a conditional branch — lifecycle bookends are normalized into the "
                 "runtime scaffold. Anchor the branch on the functional step the interrupt "
                 "blocks.");
}

void checkChildType(const CheckedStep& child) {
  const auto type = child.interaction.knownType();
  if (type && takesPartInBranches(*type)) return;
  child.error(Code::invalidConditionalStructure, ".type",
              "'" + child.interaction.type +
                  "' cannot be a branch child — branches allow primitive actions and runTest (" +
                  joinedRawValues<InteractionType>(", ", takesPartInBranches) + "). Compose " +
                  joinedRawValues<InteractionType>("/", std::not_fn(takesPartInBranches)) +
                  " at the top level instead.");
}

void checkChildCondition(const CheckedStep& child) {
  const auto& condition = child.interaction.previousStepCondition;
  if (!condition) {
    child.error(Code::missingRequiredField, ".previousStepCondition",
                "Every child must declare previousStepCondition: 'previousFailed' = recovery "
                "branch (runs when the parent step fails, and the parent then soft-fails instead "
                "of failing the test), 'previousSucceeded' = runs only when the parent succeeds.",
                rawValue(PreviousStepCondition::previousFailed));
  } else if (!fromRawValue<PreviousStepCondition>(*condition)) {
    child.error(Code::invalidEnumValue, ".previousStepCondition",
                "Unknown previousStepCondition '" + *condition +
                    "'. Valid values: " + joinedRawValues<PreviousStepCondition>(", ") + ".");
  }
}

void checkChild(const CheckedStep& child) {
  if (child.interaction.hasChildren()) {
    child.error(Code::invalidConditionalStructure, ".children",
                "Conditional branches are ONE level deep — a child cannot have children of its own "
                "(Corvane strips deeper nesting on load). Flatten the branch into a sequence of "
                "children on the same parent.");
  }
  checkChildType(child);
  if (const auto command = lifecycleCommand(child.interaction)) {
    child.error(Code::invalidConditionalStructure, ".parameters.command",
                std::string("builtIn/").append(rawValue(*command)) +
                    " is not valid inside a branch — it would terminate/relaunch the app mid-test. "
                    "Branches handle in-app recovery (dismiss the dialog, retry the step).");
  }
  checkChildCondition(child);
}

/// The rules of a top-level step's place in branching: its own condition, and its children with
/// all their rules.
void checkBranch(const CheckedStep& step) {
  checkTopLevelCondition(step);
  checkParent(step);
  if (!step.interaction.children) return;
  const auto& children = *step.interaction.children;
  const DecodePath branch = step.path.member(keyOf<&AgentInteraction::children>());
  for (std::size_t c = 0; c < children.size(); ++c) {
    const DecodePath place = branch.element(c);
    const CheckedStep child{children[c], place, step.platform, step.result};
    checkChild(child);
    checkStep(child);
  }
}

void checkInteractions(const AgentTest& test, const std::string& path, AgentTargetPlatform platform,
                       ValidationResult& result) {
  if (test.interactions.empty()) {
    result.addError(Code::emptyInteractionsArray, path,
                    "Test '" + test.name + "' has no interactions.");
    return;
  }
  checkBookends(test, path, result);
  const DecodePath steps(path);
  for (std::size_t n = 0; n < test.interactions.size(); ++n) {
    const DecodePath place = steps.element(n);
    const CheckedStep step{test.interactions[n], place, platform, result};
    checkComposition(step);
    checkStep(step);
    checkBranch(step);
  }
}

void checkSelfHealing(const AgentTest& test, const std::string& path, ValidationResult& result) {
  const std::string off(rawValue(SelfHealingMode::off));
  const std::string fullTest(rawValue(SelfHealingMode::fullTest));
  const std::string mode = test.selfHealingMode.value_or(off);
  if (!fromRawValue<SelfHealingMode>(mode)) {
    result.addError(Code::invalidEnumValue, path,
                    "selfHealingMode must be 'off' or 'fullTest'. ('perStep' is editor-only — "
                    "per-step healing flags are not on the wire.)",
                    fullTest);
  }
  const bool branches = std::any_of(test.interactions.begin(), test.interactions.end(),
                                    [](const auto& step) { return step.hasChildren(); });
  if (branches && mode == off) {
    result.addWarning(Code::invalidConditionalStructure, path,
                      "This test branches on state (a router/state-aware prerequisite) but has "
                      "self-healing off. Routers are the resilience layer — consider "
                      "selfHealingMode 'fullTest' so it absorbs ambient-state drift while the "
                      "feature tests it composes stay strict.",
                      fullTest);
  }
}

}  // namespace

ValidationResult TestValidator::validate(const AgentTestSchema& payload) {
  ValidationResult result;
  const AgentTargetPlatform platform = platformOf(payload);
  checkPlatformFields(payload, platform, result);
  if (payload.tests.empty()) {
    result.addError(Code::missingTests, "tests",
                    "'tests' array is empty. Provide at least one test.");
  }
  std::set<std::int64_t> seenIndexes;
  for (std::size_t i = 0; i < payload.tests.size(); ++i) {
    const AgentTest& test = payload.tests[i];
    const std::string path = "tests[" + std::to_string(i) + "]";
    if (!seenIndexes.insert(test.index).second) {
      result.addWarning(Code::duplicateTestIndex, path + ".index",
                        "Duplicate test index " + std::to_string(test.index) +
                            ". Each test should have a unique index.");
    }
    checkInteractions(test, path + ".interactions", platform, result);
    checkSelfHealing(test, path + ".selfHealingMode", result);
  }
  return result;
}

}  // namespace corvane
