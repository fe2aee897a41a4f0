#include "corvane_mcp/tools/Tools.h"

#include <gtest/gtest.h>

#include "CorvaneCore/text/Uuid.h"
#include "tests/support/TemporaryApp.h"
#include "tests/unit/workspace/WorkspaceBench.h"

namespace corvane::testing {
namespace {

constexpr std::string_view suffix = ".explorerequest.json";

class ExploreFlowToolTest : public ::testing::Test {
 protected:
  [[nodiscard]] WorkspaceBench::Answer call(std::string_view arguments) const {
    return bench.call<makeExploreFlowTool>(arguments);
  }
  /// The id that the one waiting request is named after.
  [[nodiscard]] std::string requestId() const {
    const std::string name = bench.onlyRequest().filename();
    return name.substr(0, name.size() - suffix.size());
  }
  /// The waiting request, whose id and date the test does not repeat.
  [[nodiscard]] std::string requestMembers() const {
    std::string text = TestFiles::read(bench.onlyRequest());
    const auto drop = [&](const std::string& part) {
      const auto at = text.find(part);
      if (at != std::string::npos) text.erase(at, part.size());
    };
    drop(R"("createdAt":"2026-01-31T12:00:00Z",)");
    drop(R"("requestId":")" + requestId() + R"(",)");
    drop(R"(,"schemaVersion":3)");
    return text;
  }
  void expectRefused(std::string_view arguments, const std::string& reason) const {
    EXPECT_EQ(call(arguments),
              (WorkspaceBench::Answer{"error:invalid_arguments\n\n" + reason, true}))
        << arguments;
    EXPECT_TRUE(bench.requests().empty()) << arguments;
  }

  WorkspaceBench bench;
};

const std::string projectReason =
    "'projectName' is required and must be an EXISTING Corvane project (exploration does not "
    "create projects — use create_test first).";
const std::string goalReason =
    "'goal' is required — a specific natural-language description of the flow to discover, "
    "including the end state to assert.";
const std::string tail =
    " and repeat until terminal. Exploration takes minutes (status \"authoring\" carries live "
    "activity). On \"authored\", run_test the authoredTest.testName to confirm it's a "
    "deterministic regression guard. For the next flow, decide charted vs uncharted: study the "
    "exhaust (describe_project: world map + authored steps) and author charted neighbors yourself "
    "via create_test + reuseSteps; keep exploring where the map is blank.";

TEST_F(ExploreFlowToolTest, NeedsAnArgumentsObject) {
  EXPECT_EQ(bench.protocolError<makeExploreFlowTool>(), "-32602 explore_flow requires arguments");
  for (const char* arguments : {"null", "[]", R"("goal")", "1", "true"}) {
    EXPECT_EQ(bench.protocolError<makeExploreFlowTool>(arguments),
              "-32602 explore_flow requires arguments");
  }
  EXPECT_TRUE(bench.requests().empty());
}

TEST_F(ExploreFlowToolTest, NeedsAProject) {
  for (const char* arguments : {"{}", R"({"goal":"x","maxCreditSpend":0})", R"({"projectName":""})",
                                R"({"projectName":null,"goal":"Visit each tab"})",
                                R"({"projectName":7,"goal":"Visit each tab"})",
                                R"({"projectName":["Shop"],"goal":"Visit each tab"})"}) {
    expectRefused(arguments, projectReason);
  }
}

TEST_F(ExploreFlowToolTest, NeedsAGoalOfTenCharacters) {
  for (const char* goal :
       {"null", "1234567890", R"([])", R"("")", R"("          ")", R"("     ninechars      ")",
        R"("\n\t\u00a0\u2003ninechars\u0085\u2029")", R"("ééééééééé")",
        R"("日本語日本語日本語")"}) {
    expectRefused(R"({"projectName":"Shop","maxCreditSpend":0,"goal":)" + std::string(goal) + "}",
                  goalReason);
  }
}

TEST_F(ExploreFlowToolTest, CharactersAreCodePoints) {
  EXPECT_FALSE(call(R"({"projectName":"Shop","goal":"éééééééééé"})").isError);
  EXPECT_FALSE(
      call(R"({"projectName":"Shop","goal":"e\u0301e\u0301e\u0301e\u0301e\u0301"})").isError);
  EXPECT_FALSE(call(R"({"projectName":"Shop","goal":"🚀🚀🚀🚀🚀🚀🚀🚀🚀🚀"})").isError);
}

TEST_F(ExploreFlowToolTest, TheProjectsNameIsNotTrimmed) {
  EXPECT_FALSE(call(R"({"projectName":" ","goal":"Visit each tab"})").isError);
  EXPECT_EQ(requestMembers(), R"({"goal":"Visit each tab","projectName":" "})");
}

TEST_F(ExploreFlowToolTest, RefusesASpendBelowOne) {
  const std::vector<std::pair<std::string, std::string>> spends{{"0.5", "0.5"},
                                                                {"0", "0.0"},
                                                                {"0.0", "0.0"},
                                                                {"-3", "-3.0"},
                                                                {"1e-3", "0.001"},
                                                                {"0.9999", "0.9999"},
                                                                {"-1000000", "-1000000.0"},
                                                                {"1e-30", "1e-30"},
                                                                {"-2.5e300", "-2.5e+300"}};
  for (const auto& [sent, shown] : spends) {
    expectRefused(R"({"projectName":"Shop","goal":"Visit each tab","maxCreditSpend":)" + sent + "}",
                  "maxCreditSpend must be at least 1 (you sent " + shown +
                      "). Expect ~10-20 credits per explored step (budget ~ steps x 15); omit the "
                      "field only if you accept uncapped spend.");
  }
}

TEST_F(ExploreFlowToolTest, ShowsTheBudgetInWholeCredits) {
  const std::vector<std::pair<std::string, std::string>> spends{
      {"99.6", "100 credits"},
      {"1", "1 credits"},
      {"2.5", "2 credits"},
      {"150.0", "150 credits"},
      {"1e20", "100000000000000000000 credits"}};
  for (const auto& [sent, shown] : spends) {
    const auto answer =
        call(R"({"projectName":"Shop","goal":"Visit each tab","maxCreditSpend":)" + sent + "}");
    EXPECT_NE(answer.text.find("\n  Budget:      " + shown + "\n"), std::string::npos)
        << answer.text;
  }
}

TEST_F(ExploreFlowToolTest, ASpendThatIsNoNumberIsAbsent) {
  for (const char* sent : {R"("50")", "null", "true", "[50]"}) {
    const WorkspaceBench fresh;
    const auto answer = fresh.call<makeExploreFlowTool>(
        R"({"projectName":"Shop","goal":"Visit each tab","maxCreditSpend":)" + std::string(sent) +
        "}");
    EXPECT_NE(answer.text.find("\n  Budget:      UNCAPPED — consider setting maxCreditSpend\n"),
              std::string::npos);
    EXPECT_EQ(TestFiles::read(fresh.onlyRequest()).find("maxCreditSpend"), std::string::npos);
  }
}

TEST_F(ExploreFlowToolTest, WritesEverythingItWasGiven) {
  bench.client.setName("agent/1");
  EXPECT_FALSE(call(R"({"projectName":"Shop","goal":"1. Sign in\n2. \"Tabs\" / all",)"
                    R"("testName":"Tabs load","targetPlatform":"iOS","maxCreditSpend":99.6,)"
                    R"("resumeFromTestId":"t1","resumeFromTestName":"Log in",)"
                    R"("iosProjectPath":"/src/shop","bundleIdentifier":"com.example.Shop",)"
                    R"("androidProjectPath":"/src/droid","applicationId":"com.example.shop",)"
                    R"("unknown":1})")
                   .isError);
  EXPECT_EQ(TestFiles::read(bench.onlyRequest()),
            R"({"androidProjectPath":"/src/droid","applicationId":"com.example.shop",)"
            R"("bundleIdentifier":"com.example.Shop","clientName":"agent/1",)"
            R"("createdAt":"2026-01-31T12:00:00Z","goal":"1. Sign in\n2. \"Tabs\" / all",)"
            R"("iosProjectPath":"/src/shop","maxCreditSpend":99.6,"projectName":"Shop",)"
            R"("requestId":")" +
                requestId() +
                R"(","resumeFromTestId":"t1","resumeFromTestName":"Log in","schemaVersion":3,)"
                R"("targetPlatform":"iOS","testName":"Tabs load"})");
}

TEST_F(ExploreFlowToolTest, WritesNoMoreThanItWasGiven) {
  EXPECT_FALSE(call(R"({"projectName":"Shop","goal":"  ten chars!  "})").isError);
  EXPECT_EQ(TestFiles::read(bench.onlyRequest()),
            R"({"createdAt":"2026-01-31T12:00:00Z","goal":"  ten chars!  ","projectName":"Shop",)"
            R"("requestId":")" +
                requestId() + R"(","schemaVersion":3})");
}

TEST_F(ExploreFlowToolTest, EmptyTextsCountAsAbsentWhereTheyMeanNothing) {
  EXPECT_FALSE(call(R"({"projectName":"Shop","goal":"Visit each tab","resumeFromTestId":"",)"
                    R"("resumeFromTestName":"Log in","iosProjectPath":"","bundleIdentifier":"",)"
                    R"("androidProjectPath":" ","applicationId":"","testName":"",)"
                    R"("targetPlatform":"ios"})")
                   .isError);
  EXPECT_EQ(requestMembers(),
            R"({"androidProjectPath":" ","goal":"Visit each tab","projectName":"Shop",)"
            R"("resumeFromTestName":"Log in","targetPlatform":"ios","testName":""})");
}

TEST_F(ExploreFlowToolTest, TextsOfAnotherTypeCountAsAbsent) {
  EXPECT_FALSE(call(R"({"projectName":"Shop","goal":"Visit each tab","resumeFromTestId":1,)"
                    R"("resumeFromTestName":[],"iosProjectPath":{},"bundleIdentifier":true,)"
                    R"("androidProjectPath":null,"applicationId":0.5,"testName":2,)"
                    R"("targetPlatform":["iOS"]})")
                   .isError);
  EXPECT_EQ(requestMembers(), R"({"goal":"Visit each tab","projectName":"Shop"})");
}

TEST_F(ExploreFlowToolTest, AnswersWithAllThatFollows) {
  const auto answer =
      call(R"({"projectName":"Shop","goal":" 1. Sign in\n2. Tabs ","maxCreditSpend":80})");
  const std::string id = requestId();
  EXPECT_EQ(parseRequestId(id), id);
  EXPECT_EQ(answer,
            (WorkspaceBench::Answer{
                "Exploration dispatched to Corvane.\n\n  requestId:   " + id +
                    "\n  Project:     Shop\n  Goal:         1. Sign in\n2. Tabs "
                    "\n  Budget:      80 credits\n  File:        " +
                    (bench.home.path() / ".local/share/Corvane/AgentRunRequests" / id).string() +
                    ".explorerequest.json\n  Corvane.app: <not found>  (LAUNCH FAILED — open "
                    "Corvane manually)\n\nNext: call get_result {\"requestId\":\"" +
                    id + "\",\"waitSeconds\":120}" + tail,
                false}));
  EXPECT_EQ(bench.logged(),
            (std::vector<std::string>{"INFO Wrote explore request: " +
                                          (bench.paths.agentRunRequestsDirectory() / id).string() +
                                          ".explorerequest.json",
                                      "WARN Could not locate Corvane.app to launch"}));
}

TEST_F(ExploreFlowToolTest, EveryRequestHasAnIdOfItsOwn) {
  const char* arguments = R"({"projectName":"Shop","goal":"Visit each tab"})";
  const auto first = call(arguments).text;
  EXPECT_NE(call(arguments).text, first);
  EXPECT_EQ(bench.requests().size(), 2U);
}

TEST_F(ExploreFlowToolTest, LaunchesTheAppThatItFinds) {
  const TemporaryApp app(bench.home.path() / "Applications" / "Corvane.app");
  const auto answer = call(R"({"projectName":"Shop","goal":"Visit each tab"})");
  static_cast<void>(app.waitUntilUp());
  EXPECT_NE(answer.text.find("\n  Corvane.app: " + app.bundle().string() + "\n\nNext: "),
            std::string::npos)
      << answer.text;
}

TEST_F(ExploreFlowToolTest, AnAppThatRunsIsNotLaunchedAgain) {
  TemporaryApp running(bench.home.path() / "elsewhere" / "Corvane.app");
  running.open();
  // Launching this one would fail.
  std::filesystem::create_directories(bench.home.path() / "Applications" / "Corvane.app");
  const auto answer = call(R"({"projectName":"Shop","goal":"Visit each tab"})");
  EXPECT_EQ(answer.text.find("LAUNCH FAILED"), std::string::npos) << answer.text;
  EXPECT_EQ(bench.logged().size(), 1U);
}

TEST_F(ExploreFlowToolTest, AFailedLaunchIsNoFailure) {
  const auto bundle = bench.home.path() / "Applications" / "Corvane.app";
  std::filesystem::create_directories(bundle);
  const auto answer = call(R"({"projectName":"Shop","goal":"Visit each tab"})");
  EXPECT_FALSE(answer.isError);
  EXPECT_NE(answer.text.find("\n  Corvane.app: " + bundle.string() +
                             "  (LAUNCH FAILED — open Corvane manually)\n"),
            std::string::npos)
      << answer.text;
  EXPECT_EQ(bench.requests().size(), 1U);
}

TEST_F(ExploreFlowToolTest, AFailedWriteIsAProtocolError) {
  const auto folder = bench.paths.agentRunRequestsDirectory();
  TestFiles::write(folder, "in the way");
  EXPECT_TRUE(
      bench.protocolError<makeExploreFlowTool>(R"({"projectName":"Shop","goal":"Visit each tab"})")
          .starts_with("-32603 Failed to write explore request: could not write " +
                       folder.string() + "/"));
  EXPECT_TRUE(bench.logged().empty());
}

}  // namespace
}  // namespace corvane::testing
