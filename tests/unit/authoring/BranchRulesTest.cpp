#include <gtest/gtest.h>

#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

using Payloads::look;
using Payloads::open;
using Payloads::terminate;

constexpr const char* openByName =
    R"({"type":"builtIn","description":"MyApp","parameters":{"command":"openApplication"}})";
constexpr const char* goHome =
    R"({"type":"builtIn","description":"","parameters":{"command":"goHome"}})";

const std::string first =
    "error missingFirstInteraction Q[0]: Test 'T' must start with a builtIn/terminateApplication "
    "interaction (clean-slate guarantee). → "
    R"({"description":"","parameters":{"command":"terminateApplication"},"type":"builtIn"})";
const std::string second =
    "error missingSecondInteraction Q[1]: Test 'T' second interaction must be "
    "builtIn/openApplication with description '{{APP_NAME}}'. → "
    R"({"description":"{{APP_NAME}}","parameters":{"command":"openApplication"},"type":"builtIn"})";

std::string last(int position) {
  return "error missingLastInteraction Q[" + std::to_string(position) +
         "]: Test 'T' must end with a builtIn/terminateApplication interaction so the simulator is "
         "left clean. → "
         R"({"description":"","parameters":{"command":"terminateApplication"},"type":"builtIn"})";
}

IssueLines issuesOfSteps(const std::vector<std::string_view>& steps) {
  return abbreviated(issuesOf(Payloads::ios({Payloads::test(steps)})), "tests[0].interactions",
                     "Q");
}

TEST(BookendRulesTest, TerminateOpenTerminateIsSound) {
  EXPECT_EQ(issuesOfSteps({terminate, open, terminate}), IssueLines());
  EXPECT_EQ(issuesOfSteps({terminate, open, look, look, terminate}), IssueLines());
}

TEST(BookendRulesTest, ASingleTerminateStepIsSound) {
  EXPECT_EQ(issuesOfSteps({terminate}), IssueLines());
}

TEST(BookendRulesTest, TwoStepsAreFirstSecondAndLast) {
  EXPECT_EQ(issuesOfSteps({terminate, open}), IssueLines{last(1)});
  EXPECT_EQ(issuesOfSteps({terminate, terminate}), IssueLines{second});
}

TEST(BookendRulesTest, TheFirstStepTerminatesTheApp) {
  EXPECT_EQ(issuesOfSteps({goHome, open, terminate}), IssueLines{first});
  EXPECT_EQ(issuesOfSteps({look, open, terminate}), IssueLines{first});
  EXPECT_EQ(issuesOfSteps({goHome}), (IssueLines{first, last(0)}));
}

TEST(BookendRulesTest, TheSecondStepOpensTheApp) {
  EXPECT_EQ(issuesOfSteps({terminate, look, open, terminate}), IssueLines{second});
}

TEST(BookendRulesTest, TheLastStepTerminatesTheApp) {
  EXPECT_EQ(issuesOfSteps({terminate, open, look}), IssueLines{last(2)});
  EXPECT_EQ(issuesOfSteps({terminate, open, look, goHome}), IssueLines{last(3)});
}

TEST(BookendRulesTest, AllThreeAreReportedAtOnce) {
  EXPECT_EQ(issuesOfSteps({look, look, look}), (IssueLines{first, second, last(2)}));
}

/// Once as a bookend and once as an openApplication step.
TEST(BookendRulesTest, AWrongPlaceholderInSecondPlaceIsReportedTwice) {
  EXPECT_EQ(
      issuesOfSteps({terminate, openByName, look, terminate}),
      (IssueLines{
          "error wrongAppNamePlaceholder Q[1].description: openApplication description must be the "
          "literal string '{{APP_NAME}}'. Corvane replaces this placeholder after building the app "
          "and resolving its bundle/display name. → \"{{APP_NAME}}\"",
          "error wrongAppNamePlaceholder Q[1].description: openApplication.description must be "
          "exactly '{{APP_NAME}}'. Corvane substitutes the real bundle name after building. → "
          "\"{{APP_NAME}}\""}));
}

TEST(BookendRulesTest, ThePlaceholderIsExact) {
  for (const char* description : {"{{APP_NAME}} ", "{{app_name}}", "{APP_NAME}", ""}) {
    AgentTest test = Payloads::test({terminate, open, terminate});
    test.interactions[1].description = description;
    EXPECT_EQ(issuesOf(Payloads::ios({test})).size(), 2U) << description;
  }
}

/// Only a builtIn step has a command, whatever the parameters of another one say.
TEST(BookendRulesTest, TheCommandOfAnotherTypeDoesNotCount) {
  const char* disguised =
      R"({"type":"visualAssert","description":"'x'","parameters":{"command":"terminateApplication"}})";
  EXPECT_EQ(issuesOfSteps({disguised, open, disguised}), (IssueLines{first, last(2)}));
}

TEST(BookendRulesTest, ACommandThatIsNoStringDoesNotCount) {
  const char* numbered = R"({"type":"builtIn","description":"","parameters":{"command":1}})";
  const auto issues = issuesOfSteps({numbered, open, terminate});
  ASSERT_EQ(issues.size(), 2U);
  EXPECT_EQ(issues[0], first);
}

TEST(BookendRulesTest, TheTestIsNamed) {
  AgentTest test = Payloads::test({terminate, open});
  test.name = "Log \"in\"\n";
  EXPECT_TRUE(issuesOf(Payloads::ios({test}))[0].starts_with(
      "error missingLastInteraction tests[0].interactions[1]: Test 'Log \"in\"\n' must end with "));
}

/// A sound child of each type but for its condition, which is left to the test.
std::string child(const std::string& members) {
  return "{" + members + R"(,"previousStepCondition":"previousFailed"})";
}

AgentTestSchema selfHealing(std::string_view step) {
  AgentTestSchema payload = Payloads::withStep(step);
  payload.tests[0].selfHealingMode = "fullTest";
  return payload;
}

IssueLines issuesOfParent(std::string_view step) {
  return abbreviated(issuesOf(selfHealing(step)), "tests[0].interactions[2]", "R");
}

TEST(BranchRulesTest, ARecoveryStepAtTheTopLevelIsAnError) {
  EXPECT_EQ(
      issuesOfStep(R"({"type":"visualAssert","description":"'x'?",)"
                   R"("previousStepCondition":"previousFailed"})"),
      IssueLines{
          "error invalidConditionalStructure R.previousStepCondition: previousStepCondition on a "
          "TOP-LEVEL step is ignored by the runtime — this step would run unconditionally, not on "
          "failure. To run steps when another step fails, nest them as that step's `children` with "
          "previousStepCondition 'previousFailed' (the recovery branch)."});
}

TEST(BranchRulesTest, AnyOtherConditionAtTheTopLevelIsAWarning) {
  for (const char* condition : {"previousSucceeded", "previousfailed", "always", ""}) {
    EXPECT_EQ(issuesOfStep(R"({"type":"visualAssert","description":"'x'?",)"
                           R"("previousStepCondition":")" +
                           std::string(condition) + R"("})"),
              IssueLines{"warning invalidConditionalStructure R.previousStepCondition: "
                         "previousStepCondition has no effect on a top-level step (steps already "
                         "run in order). It selects branch membership for `children` only — drop "
                         "it here."})
        << condition;
  }
}

TEST(BranchRulesTest, LifecycleStepsCarryNoBranch) {
  const auto refused = [](const std::string& command) {
    return IssueLines{"error invalidConditionalStructure R.children: builtIn/" + command +
                      " cannot carry a conditional branch — lifecycle bookends are normalized into "
                      "the runtime scaffold. Anchor the branch on the functional step the "
                      "interrupt blocks."};
  };
  const std::string branch =
      R"("children":[)" + child(R"("type":"tap","description":"'OK'")") + "]}";
  EXPECT_EQ(issuesOfParent(R"({"type":"builtIn","description":"",)"
                           R"("parameters":{"command":"terminateApplication"},)" +
                           branch),
            refused("terminateApplication"));
  EXPECT_EQ(issuesOfParent(R"({"type":"builtIn","description":"{{APP_NAME}}",)"
                           R"("parameters":{"command":"openApplication"},)" +
                           branch),
            refused("openApplication"));
  EXPECT_EQ(issuesOfParent(R"({"type":"builtIn","description":"",)"
                           R"("parameters":{"command":"goHome"},)" +
                           branch),
            IssueLines());
}

TEST(BranchRulesTest, AnEmptyBranchBreaksNoRule) {
  EXPECT_EQ(issuesOfStep(R"({"type":"builtIn","description":"","children":[],)"
                         R"("parameters":{"command":"terminateApplication"}})"),
            IssueLines());
}

TEST(BranchRulesTest, EveryTypeMayCarryABranch) {
  const std::string branch =
      R"("children":[)" + child(R"("type":"tap","description":"'OK'")") + "]}";
  for (const char* parent :
       {R"({"type":"visualAssert","description":"'x'?",)",
        R"({"type":"delay","description":"","parameters":{"seconds":1},)",
        R"({"type":"waitToLoad","description":"","parameters":{"totalSeconds":1},)",
        R"({"type":"runTest","description":"","referencedTestName":"Log in",)",
        R"({"type":"userDefined","description":"","udiName":"Log in",)",
        R"({"type":"reuseSteps","description":"","referencedTestName":"Log in","fromStep":0,)"}) {
    EXPECT_EQ(issuesOfParent(parent + branch), IssueLines()) << parent;
  }
}

TEST(BranchRulesTest, NineTypesMayBeChildren) {
  for (const char* members :
       {R"("type":"tap","description":"'OK'")", R"("type":"input","description":"me")",
        R"("type":"visualAssert","description":"'OK'?")", R"("type":"scroll","description":"")",
        R"("type":"builtIn","description":"","parameters":{"command":"goHome"})",
        R"("type":"delay","description":"","parameters":{"seconds":1})",
        R"("type":"waitToLoad","description":"","parameters":{"totalSeconds":1})",
        R"("type":"drag","description":"","parameters":{"mode":"auto","what":"thumb"})",
        R"("type":"runTest","description":"","referencedTestName":"Log in")"}) {
    EXPECT_EQ(issuesOfChild(child(members)), IssueLines()) << members;
  }
}

std::string wrongType(const std::string& type) {
  return "error invalidConditionalStructure C.type: '" + type +
         "' cannot be a branch child — branches allow primitive actions and runTest (" +
         Payloads::listed(Payloads::branchTypes, ", ") +
         "). Compose userDefined/reuseSteps at the top level instead.";
}

TEST(BranchRulesTest, CompositionStaysAtTheTopLevel) {
  EXPECT_EQ(issuesOfChild(child(R"("type":"userDefined","description":"","udiName":"x")")),
            IssueLines{wrongType("userDefined")});
  EXPECT_EQ(issuesOfChild(child(R"("type":"reuseSteps","description":"","fromStep":0,)"
                                R"("referencedTestName":"Log in")")),
            IssueLines{wrongType("reuseSteps")});
}

TEST(BranchRulesTest, AnUnknownTypeOfChildBreaksTwoRules) {
  EXPECT_EQ(issuesOfChild(child(R"("type":"swipe","description":"")")),
            (IssueLines{wrongType("swipe"),
                        "error unknownInteractionType C.type: Unknown interaction type 'swipe'. "
                        "Valid types: " +
                            Payloads::listed(Payloads::allTypes, ", ")}));
}

TEST(BranchRulesTest, BranchesAreOneLevelDeep) {
  EXPECT_EQ(
      issuesOfChild(child(R"("type":"visualAssert","description":"'x'?","children":[)"
                          R"({"type":"no such type","description":""}])")),
      IssueLines{
          "error invalidConditionalStructure C.children: Conditional branches are ONE level deep — "
          "a child cannot have children of its own (Corvane strips deeper nesting on load). "
          "Flatten the branch into a sequence of children on the same parent."});
  EXPECT_EQ(issuesOfChild(child(R"("type":"visualAssert","description":"'x'?","children":[])")),
            IssueLines());
}

TEST(BranchRulesTest, BranchesDoNotEndOrStartTheApp) {
  const auto refused = [](const std::string& command) {
    return IssueLines{"error invalidConditionalStructure C.parameters.command: builtIn/" + command +
                      " is not valid inside a branch — it would terminate/relaunch the app "
                      "mid-test. Branches handle in-app recovery (dismiss the dialog, retry the "
                      "step)."};
  };
  EXPECT_EQ(issuesOfChild(child(R"("type":"builtIn","description":"",)"
                                R"("parameters":{"command":"terminateApplication"})")),
            refused("terminateApplication"));
  EXPECT_EQ(issuesOfChild(child(R"("type":"builtIn","description":"{{APP_NAME}}",)"
                                R"("parameters":{"command":"openApplication"})")),
            refused("openApplication"));
}

TEST(BranchRulesTest, EveryChildStatesItsCondition) {
  EXPECT_EQ(
      issuesOfChild(R"({"type":"tap","description":"'OK'"})"),
      IssueLines{
          "error missingRequiredField C.previousStepCondition: Every child must declare "
          "previousStepCondition: 'previousFailed' = recovery branch (runs when the parent step "
          "fails, and the parent then soft-fails instead of failing the test), 'previousSucceeded' "
          "= runs only when the parent succeeds. → \"previousFailed\""});
  for (const std::string condition : {"previousfailed", ""}) {
    EXPECT_EQ(issuesOfChild(R"({"type":"tap","description":"'OK'","previousStepCondition":")" +
                            condition + R"("})"),
              IssueLines{"error invalidEnumValue C.previousStepCondition: Unknown "
                         "previousStepCondition '" +
                         condition + "'. Valid values: previousSucceeded, previousFailed."});
  }
  for (const std::string condition : {"previousSucceeded", "previousFailed"}) {
    EXPECT_EQ(issuesOfChild(R"({"type":"tap","description":"'OK'","previousStepCondition":")" +
                            condition + R"("})"),
              IssueLines());
  }
}

TEST(BranchRulesTest, ChildrenAreCheckedOneAfterTheOther) {
  AgentTestSchema payload = Payloads::withChild(R"({"type":"tap","description":"none"})");
  payload.tests[0].interactions[2].children->push_back(
      Payloads::step(R"({"type":"delay","description":"","children":[)"
                     R"({"type":"tap","description":""}]})"));
  IssueLines places;
  for (const auto& line : issuesOf(payload)) places.push_back(line.substr(0, line.find(": ")));
  const std::string parent = "tests[0].interactions[2].children";
  EXPECT_EQ(places, (IssueLines{
                        "error missingRequiredField " + parent + "[0].previousStepCondition",
                        "error missingQuotedUiText " + parent + "[0].description",
                        "error invalidConditionalStructure " + parent + "[1].children",
                        "error missingRequiredField " + parent + "[1].previousStepCondition",
                        "error missingRequiredField " + parent + "[1].parameters.seconds",
                    }));
}

}  // namespace
}  // namespace corvane::testing
