#include <gtest/gtest.h>

#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

constexpr const char* composition =
    "' is a concrete step — author it with explore_flow (Corvane grounds each step on the real "
    "screen), then COMPOSE the result here with runTest / userDefined / reuseSteps. create_test no "
    "longer authors blind taps/inputs/scrolls/drags. (Concrete actions are still allowed inside a "
    "recovery branch's children to dismiss an OS interrupt.)";

std::string concrete(const std::string& type) {
  return "error compositionOnly R.type: '" + type + composition;
}

TEST(StepRulesTest, ConcreteStepsAreExploredNotComposed) {
  EXPECT_EQ(issuesOfStep(R"({"type":"tap","description":"'OK'"})"), IssueLines{concrete("tap")});
  EXPECT_EQ(issuesOfStep(R"({"type":"input","description":"me"})"), IssueLines{concrete("input")});
  EXPECT_EQ(issuesOfStep(R"({"type":"scroll","description":""})"), IssueLines{concrete("scroll")});
  EXPECT_EQ(issuesOfStep(
                R"({"type":"drag","description":"","parameters":{"mode":"auto","what":"thumb"}})"),
            IssueLines{concrete("drag")});
}

TEST(StepRulesTest, TheOtherRulesOfAConcreteStepRunToo) {
  const auto issues = issuesOfStep(R"({"type":"input","description":""})");
  ASSERT_EQ(issues.size(), 2U);
  EXPECT_EQ(issues[0], concrete("input"));
  EXPECT_TRUE(issues[1].starts_with("error emptyInputText R.description: "));
}

TEST(StepRulesTest, ComposedTypesAreWelcomeAtTheTopLevel) {
  for (const char* step :
       {R"({"type":"visualAssert","description":"'OK'?"})",
        R"({"type":"builtIn","description":"","parameters":{"command":"goHome"}})",
        R"({"type":"delay","description":"","parameters":{"seconds":1}})",
        R"({"type":"waitToLoad","description":"","parameters":{"totalSeconds":1}})",
        R"({"type":"runTest","description":"","referencedTestName":"Log in"})",
        R"({"type":"userDefined","description":"","udiName":"Log in"})",
        R"({"type":"reuseSteps","description":"","referencedTestName":"Log in","fromStep":0})"}) {
    EXPECT_EQ(issuesOfStep(step), IssueLines()) << step;
  }
}

TEST(StepRulesTest, AnUnknownTypeIsReportedWithAllKnownOnes) {
  const auto unknown = [](const std::string& type) {
    return IssueLines{"error unknownInteractionType R.type: Unknown interaction type '" + type +
                      "'. Valid types: tap, input, visualAssert, scroll, builtIn, delay, "
                      "waitToLoad, drag, runTest, userDefined, reuseSteps"};
  };
  EXPECT_EQ(issuesOfStep(R"({"type":"swipe","description":""})"), unknown("swipe"));
  EXPECT_EQ(issuesOfStep(R"({"type":"Tap","description":""})"), unknown("Tap"));
  EXPECT_EQ(issuesOfStep(R"({"type":"","description":""})"), unknown(""));
}

TEST(StepRulesTest, QuestionsAndTapsQuoteTheVisibleText) {
  const std::string rest =
      " descriptions must include the visible UI text in quotes. Corvane's text matcher accepts "
      "single quotes, backticks, double quotes, or smart quotes — pick one. Example: \"Button "
      "labeled 'Log In'\" or \"Do you see text `Welcome`?\". Got: ";
  EXPECT_EQ(issuesOfStep(R"({"type":"visualAssert","description":"Is Home shown?"})"),
            IssueLines{"error missingQuotedUiText R.description: visualAssert" + rest +
                       "\"Is Home shown?\""});
  EXPECT_EQ(
      issuesOfChild(R"({"type":"tap","description":"","previousStepCondition":"previousFailed"})"),
      IssueLines{"error missingQuotedUiText C.description: tap" + rest + "\"\""});
}

TEST(StepRulesTest, AnyOneOfSevenQuoteCharactersWillDo) {
  for (const std::string quote : {"'", "`", "\"", "‘", "’", "“", "”"}) {
    AgentTestSchema payload = Payloads::withStep(Payloads::look);
    payload.tests[0].interactions[2].description = "Is " + quote + "Home shown?";
    EXPECT_EQ(issuesOf(payload), IssueLines()) << quote;
  }
  for (const std::string other : {"«", "»", "´", "‹", "„", "′", "\xE2\x80"}) {
    AgentTestSchema payload = Payloads::withStep(Payloads::look);
    payload.tests[0].interactions[2].description = "Is " + other + "Home shown?";
    EXPECT_EQ(issuesOf(payload).size(), 1U) << other;
  }
}

TEST(StepRulesTest, InputNeedsATextOfAnyKind) {
  const auto issuesOfText = [](const std::string& text) {
    return issuesOfChild(R"({"type":"input","description":")" + text +
                         R"(","previousStepCondition":"previousFailed"})");
  };
  EXPECT_EQ(issuesOfText(""),
            IssueLines{"error emptyInputText C.description: input.description is the literal text "
                       "to type and must be non-empty. Use [[random(N)]] / [[randomDigits(N)]] "
                       "markers for unique values."});
  EXPECT_EQ(issuesOfText(" "), IssueLines());
  EXPECT_EQ(issuesOfText("user-[[random(6)]]"), IssueLines());
}

TEST(StepRulesTest, ABuildingBlockIsNamed) {
  const IssueLines missing{
      "error missingRequiredField R.udiName: userDefined requires 'udiName' — the name of an "
      "existing user-defined interaction (see describe_project's userDefinedInteractions)."};
  EXPECT_EQ(issuesOfStep(R"({"type":"userDefined","description":"Log in"})"), missing);
  EXPECT_EQ(issuesOfStep(R"({"type":"userDefined","description":"","udiName":""})"), missing);
  EXPECT_EQ(issuesOfStep(R"({"type":"userDefined","description":"","udiName":"x"})"), IssueLines());
}

TEST(StepRulesTest, ARunTestStepNamesATest) {
  const IssueLines missing{
      "error missingRequiredField R.referencedTestName: runTest requires either "
      "'referencedTestName' or 'referencedTestId'."};
  EXPECT_EQ(issuesOfStep(R"({"type":"runTest","description":"Log in"})"), missing);
  EXPECT_EQ(issuesOfStep(R"({"type":"runTest","description":"","referencedTestName":"",)"
                         R"("referencedTestId":""})"),
            missing);
  EXPECT_EQ(issuesOfStep(R"({"type":"runTest","description":"","referencedTestId":"x"})"),
            IssueLines());
  EXPECT_EQ(issuesOfStep(R"({"type":"runTest","description":"","referencedTestName":"x"})"),
            IssueLines());
}

const std::string noSource =
    "error missingRequiredField R.referencedTestName: reuseSteps requires 'referencedTestName' or "
    "'referencedTestId' — the source test to clone steps from.";
const std::string noFrom =
    "error missingRequiredField R.fromStep: reuseSteps requires 'fromStep' (0-based index into the "
    "source test's steps, as listed by describe_project).";
const std::string negativeFrom = "error invalidParameterType R.fromStep: fromStep must be >= 0.";
const std::string reversed =
    "error invalidParameterType R.toStep: toStep must be >= fromStep (omit it to reuse the single "
    "step at fromStep).";

IssueLines issuesOfRange(const std::string& members) {
  return issuesOfStep(R"({"type":"reuseSteps","description":"")" + members + "}");
}

TEST(StepRulesTest, AReuseStepNamesItsSource) {
  EXPECT_EQ(issuesOfRange(R"(,"fromStep":0)"), IssueLines{noSource});
  EXPECT_EQ(issuesOfRange(R"(,"fromStep":0,"referencedTestName":"")"), IssueLines{noSource});
  EXPECT_EQ(issuesOfRange(R"(,"fromStep":0,"referencedTestId":"x")"), IssueLines());
}

TEST(StepRulesTest, AReuseStepSaysItsRange) {
  const std::string source = R"(,"referencedTestName":"Log in")";
  EXPECT_EQ(issuesOfRange(source), IssueLines{noFrom});
  EXPECT_EQ(issuesOfRange(source + R"(,"toStep":-3)"), IssueLines{noFrom});
  EXPECT_EQ(issuesOfRange(source + R"(,"fromStep":-1)"), IssueLines{negativeFrom});
  EXPECT_EQ(issuesOfRange(source + R"(,"fromStep":2,"toStep":1)"), IssueLines{reversed});
  EXPECT_EQ(issuesOfRange(source + R"(,"fromStep":-1,"toStep":-2)"),
            (IssueLines{negativeFrom, reversed}));
  EXPECT_EQ(issuesOfRange(source + R"(,"fromStep":2,"toStep":2)"), IssueLines());
  EXPECT_EQ(issuesOfRange(source + R"(,"fromStep":2,"toStep":9)"), IssueLines());
  EXPECT_EQ(issuesOfRange(""), (IssueLines{noSource, noFrom}));
}

}  // namespace
}  // namespace corvane::testing
