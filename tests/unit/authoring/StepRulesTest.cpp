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
                      "'. Valid types: " + Payloads::listed(Payloads::allTypes, ", ")};
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

constexpr const char* commands =
    "none, terminateApplication, openApplication, openUrl, goHome, goBack, hitReturnKey, "
    "clearText, hitBackspaceKey, tapToDismiss";

AgentTestSchema withCommand(const std::string& command, const std::string& description) {
  AgentTestSchema payload = Payloads::withStep(
      R"({"type":"builtIn","description":"","parameters":{"command":")" + command + R"("}})");
  payload.tests[0].interactions[2].description = description;
  return payload;
}

IssueLines issuesOfCommand(const std::string& command, const std::string& description = "") {
  return abbreviated(issuesOf(withCommand(command, description)), "tests[0].interactions[2]", "R");
}

TEST(BuiltInRulesTest, ACommandIsRequired) {
  const IssueLines missing{
      std::string("error missingRequiredField R.parameters.command: builtIn interactions require "
                  "parameters.command. Valid: ") +
      commands};
  EXPECT_EQ(issuesOfStep(R"({"type":"builtIn","description":"goHome"})"), missing);
  EXPECT_EQ(issuesOfStep(R"({"type":"builtIn","description":"","parameters":{}})"), missing);
  EXPECT_EQ(issuesOfStep(R"({"type":"builtIn","description":"","parameters":{"command":7}})"),
            missing);
  EXPECT_EQ(issuesOfStep(R"({"type":"builtIn","description":"","parameters":{"command":null}})"),
            missing);
  EXPECT_EQ(
      issuesOfStep(R"({"type":"builtIn","description":"","parameters":{"command":["goHome"]}})"),
      missing);
}

TEST(BuiltInRulesTest, AnUnknownCommandIsReportedWithAllKnownOnes) {
  for (const std::string command : {"GoHome", "openURL", ""}) {
    EXPECT_EQ(issuesOfCommand(command),
              IssueLines{"error invalidEnumValue R.parameters.command: Unknown builtIn command '" +
                         command + "'. Valid: " + commands});
  }
}

TEST(BuiltInRulesTest, NoneIsNoCommandForATest) {
  EXPECT_EQ(issuesOfCommand("none"),
            IssueLines{"error invalidEnumValue R.parameters.command: builtIn command 'none' is not "
                       "a valid command."});
}

TEST(BuiltInRulesTest, CommandsWithoutADescriptionAreSound) {
  for (const char* command :
       {"terminateApplication", "goHome", "hitReturnKey", "clearText", "tapToDismiss"}) {
    EXPECT_EQ(issuesOfCommand(command), IssueLines()) << command;
    EXPECT_EQ(issuesOfCommand(command, "whatever"), IssueLines()) << command;
  }
}

TEST(BuiltInRulesTest, OpenApplicationTakesThePlaceholderOnly) {
  EXPECT_EQ(issuesOfCommand("openApplication", "{{APP_NAME}}"), IssueLines());
  for (const std::string description : {"Shop", "", "{{APP_NAME}}\n"}) {
    EXPECT_EQ(issuesOfCommand("openApplication", description),
              IssueLines{"error wrongAppNamePlaceholder R.description: "
                         "openApplication.description must be exactly '{{APP_NAME}}'. Corvane "
                         "substitutes the real bundle name after building. → \"{{APP_NAME}}\""});
  }
}

TEST(BuiltInRulesTest, OpenUrlNeedsAnAddress) {
  for (const std::string description : {"", "  ", "\n\t\r", "\u00a0\u2003\u2029"}) {
    EXPECT_EQ(issuesOfCommand("openUrl", description),
              IssueLines{"error missingRequiredField R.description: openUrl.description must be a "
                         "URL (e.g. \"https://example.com\") or a `$paramName` placeholder. → "
                         "\"https://example.com\""});
  }
  for (const std::string description : {"https://example.com/a", "$target", " shop:// ", "x"}) {
    EXPECT_EQ(issuesOfCommand("openUrl", description), IssueLines()) << description;
  }
}

TEST(BuiltInRulesTest, BackspaceNeedsAPositiveCount) {
  for (const std::string description : {"5", " 5 ", "\n12\t", "1", "007", "9223372036854775807"}) {
    EXPECT_EQ(issuesOfCommand("hitBackspaceKey", description), IssueLines()) << description;
  }
  for (const std::string description :
       {"", " ", "0", "-3", "five", "5.0", "5 6", "0x5", "1e2", "５", "9223372036854775808"}) {
    EXPECT_EQ(issuesOfCommand("hitBackspaceKey", description),
              IssueLines{"error invalidBackspaceCount R.description: hitBackspaceKey.description "
                         "must be a positive integer count, e.g. \"5\". Got: \"" +
                         description + "\""});
  }
}

TEST(BuiltInRulesTest, GoBackIsForAndroid) {
  const IssueLines refused{
      "error androidOnlyCommand R.parameters.command: goBack is Android-only. On iOS, use a "
      "tap/scroll back gesture or rely on tap-on-back-button."};
  EXPECT_EQ(issuesOfCommand("goBack"), refused);
  EXPECT_EQ(issuesOf(Payloads::android(withCommand("goBack", "").tests)), IssueLines());
  AgentTestSchema capital = withCommand("goBack", "");
  capital.targetPlatform = "Android";
  EXPECT_EQ(abbreviated(issuesOf(capital), "tests[0].interactions[2]", "R"), refused);
}

TEST(BuiltInRulesTest, GoBackInABranchIsForAndroidToo) {
  const char* goBack = R"({"type":"builtIn","description":"","parameters":{"command":"goBack"},)"
                       R"("previousStepCondition":"previousFailed"})";
  ASSERT_EQ(issuesOfChild(goBack).size(), 1U);
  EXPECT_TRUE(
      issuesOfChild(goBack)[0].starts_with("error androidOnlyCommand C.parameters.command: "));
  EXPECT_EQ(issuesOf(Payloads::android(Payloads::withChild(goBack).tests)), IssueLines());
}

std::string stepText(const std::string& type, const std::string& parameters) {
  return R"({"type":")" + type +
         R"(","description":"","previousStepCondition":"previousFailed","parameters":)" +
         parameters + "}";
}

/// As a branch child, where every one of these types is welcome.
IssueLines issues(const std::string& type, const std::string& parameters) {
  return issuesOfChild(stepText(type, parameters));
}

const std::string strayTotal =
    "error unknownParameter C.parameters.totalSeconds: delay does not accept 'totalSeconds' (that "
    "belongs to waitToLoad). Use 'seconds'.";
const std::string noSeconds =
    "error missingRequiredField C.parameters.seconds: delay requires parameters.seconds (a "
    "non-negative number, e.g. 1.5).";
const std::string straySeconds =
    "error unknownParameter C.parameters.seconds: waitToLoad does not accept 'seconds' (that "
    "belongs to delay). Use 'totalSeconds'.";
const std::string noTotal =
    "error missingRequiredField C.parameters.totalSeconds: waitToLoad requires "
    "parameters.totalSeconds (max seconds to wait, e.g. 5).";

TEST(ParameterRulesTest, DelayTakesSeconds) {
  EXPECT_EQ(issues("delay", R"({"seconds":1.5})"), IssueLines());
  EXPECT_EQ(issues("delay", R"({"seconds":0})"), IssueLines());
  EXPECT_EQ(issues("delay", "{}"), IssueLines{noSeconds});
  EXPECT_EQ(issuesOfChild(
                R"({"type":"delay","description":"3","previousStepCondition":"previousFailed"})"),
            IssueLines{noSeconds});
}

TEST(ParameterRulesTest, SecondsThatAreNoNumberAreMissing) {
  for (const char* seconds : {R"("1.5")", "true", "null", "[1]", "{}"}) {
    EXPECT_EQ(issues("delay", R"({"seconds":)" + std::string(seconds) + "}"),
              IssueLines{noSeconds});
    EXPECT_EQ(issues("waitToLoad", R"({"totalSeconds":)" + std::string(seconds) + "}"),
              IssueLines{noTotal});
  }
}

TEST(ParameterRulesTest, SwappedKeysAreStrayAndLeaveTheRightOneMissing) {
  EXPECT_EQ(issues("delay", R"({"totalSeconds":5})"), (IssueLines{strayTotal, noSeconds}));
  EXPECT_EQ(issues("waitToLoad", R"({"seconds":5})"), (IssueLines{straySeconds, noTotal}));
}

TEST(ParameterRulesTest, AStrayKeyBesideTheRightOneIsReported) {
  EXPECT_EQ(issues("delay", R"({"seconds":1,"totalSeconds":5})"), IssueLines{strayTotal});
  EXPECT_EQ(issues("waitToLoad", R"({"seconds":1,"totalSeconds":5})"), IssueLines{straySeconds});
}

TEST(ParameterRulesTest, WaitToLoadTakesTotalSecondsWithoutALimit) {
  EXPECT_EQ(issues("waitToLoad", R"({"totalSeconds":5,"until":"Is it gone?"})"), IssueLines());
  EXPECT_EQ(issues("waitToLoad", R"({"totalSeconds":601})"), IssueLines());
  EXPECT_EQ(issues("waitToLoad", "{}"), IssueLines{noTotal});
}

TEST(ParameterRulesTest, AScrollDirectionIsOneOfFive) {
  for (const char* direction : {"auto", "up", "down", "left", "right"}) {
    EXPECT_EQ(issues("scroll", R"({"direction":")" + std::string(direction) + R"("})"),
              IssueLines());
  }
  for (const std::string direction : {"Up", "sideways", ""}) {
    EXPECT_EQ(issues("scroll", R"({"direction":")" + direction + R"("})"),
              IssueLines{"error invalidEnumValue C.parameters.direction: Unknown scroll direction "
                         "'" +
                         direction + "'. Valid: auto, up, down, left, right"});
  }
  EXPECT_EQ(issues("scroll", "{}"), IssueLines());
  EXPECT_EQ(issues("scroll", R"({"direction":7})"), IssueLines());
}

TEST(ParameterRulesTest, ADragNeedsAMode) {
  const IssueLines noMode{
      "error missingRequiredField C.parameters.mode: drag requires parameters.mode = 'auto' "
      "(AI-driven) or 'hardcoded' (explicit coords)."};
  for (const char* parameters :
       {"{}", R"({"what":"thumb"})", R"({"mode":"Auto"})", R"({"mode":""})", R"({"mode":1})"}) {
    EXPECT_EQ(issues("drag", parameters), noMode) << parameters;
  }
  EXPECT_EQ(
      issuesOfChild(R"({"type":"drag","description":"","previousStepCondition":"previousFailed"})"),
      noMode);
}

TEST(ParameterRulesTest, ADescribedDragSaysWhatOrWhere) {
  const IssueLines nothing{
      "error missingRequiredField C.parameters.what: drag(auto) requires at least 'what' (what to "
      "drag) and/or 'to' (where to drag it)."};
  for (const char* members : {"", R"(,"what":"")", R"(,"what":7)", R"(,"to":0.5)", R"(,"to":null)",
                              R"(,"to":true)", R"(,"from":"here")"}) {
    EXPECT_EQ(issues("drag", R"({"mode":"auto")" + std::string(members) + "}"), nothing) << members;
  }
  for (const char* members : {R"(,"what":"thumb")", R"(,"to":"the right end")",
                              R"(,"to":{"x":0,"y":1})", R"(,"what":"","to":"end")"}) {
    EXPECT_EQ(issues("drag", R"({"mode":"auto")" + std::string(members) + "}"), IssueLines())
        << members;
  }
}

const std::string noFromPoint =
    "error missingRequiredField C.parameters.from: drag(hardcoded) requires parameters.from = {x, "
    "y} with values in [0,1].";
const std::string noToPoint =
    "error missingRequiredField C.parameters.to: drag(hardcoded) requires parameters.to = {x, y} "
    "with values in [0,1].";

IssueLines issuesOfPoints(const std::string& from, const std::string& to) {
  return issues("drag", R"({"mode":"hardcoded","from":)" + from + R"(,"to":)" + to + "}");
}

TEST(ParameterRulesTest, AHardcodedDragNeedsTwoPoints) {
  const std::string point = R"({"x":0.5,"y":0.25})";
  EXPECT_EQ(issues("drag", R"({"mode":"hardcoded"})"), (IssueLines{noFromPoint, noToPoint}));
  EXPECT_EQ(issuesOfPoints(point, point), IssueLines());
  EXPECT_EQ(issuesOfPoints("null", point), IssueLines{noFromPoint});
  EXPECT_EQ(issuesOfPoints(point, R"("the end")"), IssueLines{noToPoint});
}

TEST(ParameterRulesTest, PointsLieOnTheScreen) {
  const std::string point = R"({"x":0.5,"y":0.25})";
  for (const char* good : {R"({"x":0,"y":1})", R"({"x":1.0,"y":0.0})", R"({"x":0,"y":0,"z":9})"}) {
    EXPECT_EQ(issuesOfPoints(good, good), IssueLines()) << good;
  }
  for (const char* bad :
       {"{}", R"({"x":0.5})", R"({"y":0.5})", R"({"x":-0.001,"y":0})", R"({"x":0,"y":1.001})",
        R"({"x":"0.5","y":0})", R"({"x":true,"y":0})", R"({"x":null,"y":0})", "[0.5,0.5]", "0.5"}) {
    EXPECT_EQ(issuesOfPoints(bad, point), IssueLines{noFromPoint}) << bad;
    EXPECT_EQ(issuesOfPoints(point, bad), IssueLines{noToPoint}) << bad;
  }
}

}  // namespace
}  // namespace corvane::testing
