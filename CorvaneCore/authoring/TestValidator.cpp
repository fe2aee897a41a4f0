#include "CorvaneCore/authoring/TestValidator.h"

#include <algorithm>
#include <set>

#include "CorvaneCore/authoring/rules/BookendRules.h"
#include "CorvaneCore/authoring/rules/BranchRules.h"
#include "CorvaneCore/authoring/rules/PlatformRules.h"
#include "CorvaneCore/authoring/rules/StepRules.h"
#include "CorvaneCore/authoring/vocabulary/SelfHealingMode.h"

namespace corvane {

namespace {

using Code = ValidationIssue::Code;

void checkInteractions(const AgentTest& test, const std::string& path, AgentTargetPlatform platform,
                       ValidationResult& result) {
  if (test.interactions.empty()) {
    result.addError(Code::emptyInteractionsArray, path,
                    "Test '" + test.name + "' has no interactions.");
    return;
  }
  checkBookends(test, path, result);
  for (std::size_t n = 0; n < test.interactions.size(); ++n) {
    const CheckedStep step{test.interactions[n], path + "[" + std::to_string(n) + "]", platform,
                           result};
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
