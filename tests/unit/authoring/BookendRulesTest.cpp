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

}  // namespace
}  // namespace corvane::testing
