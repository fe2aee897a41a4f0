#include <gtest/gtest.h>

#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

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
         "' cannot be a branch child — branches allow primitive actions and runTest (tap, input, "
         "visualAssert, scroll, builtIn, delay, waitToLoad, drag, runTest). Compose "
         "userDefined/reuseSteps at the top level instead.";
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
                        "Valid types: tap, input, visualAssert, scroll, builtIn, delay, "
                        "waitToLoad, drag, runTest, userDefined, reuseSteps"}));
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
