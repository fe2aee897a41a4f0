#include <gtest/gtest.h>

#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

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

}  // namespace
}  // namespace corvane::testing
