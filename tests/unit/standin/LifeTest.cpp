#include <gmock/gmock.h>

#include <cmath>
#include <fstream>

#include "corvane_standin/Settings.h"
#include "tests/unit/standin/StandInFixture.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using namespace std::chrono_literals;

const char* const held = "Add to cart and remove";

class LifeTest : public StandInFixture {
 protected:
  LifeTest() { setOutcome(held, TestOutcome::Kind::hold); }
};

TEST_F(LifeTest, MakesTheFoldersAndPublishesTheWorkspace) {
  start();
  EXPECT_THAT(home.entries(), IsSupersetOf({".local/share/Corvane/AgentImports",
                                            ".local/share/Corvane/AgentMCP/context.json",
                                            ".local/share/Corvane/AgentResults",
                                            ".local/share/Corvane/AgentRunRequests"}));
  const auto workspace = AgentContext::read(paths.agentContextFile());
  EXPECT_EQ(workspace.updatedAt, clock.date());
  EXPECT_EQ(workspace.projects.size(), 2U);
}

TEST_F(LifeTest, TakesNothingUpBeforeTheColdStartIsOver) {
  settings.coldStartSeconds = 3;
  start();
  const auto id = drop({held});
  pass(2900ms);
  EXPECT_TRUE(fileExists(AgentRunRequest::fileURL(id, paths)));
  EXPECT_FALSE(fileExists(paths.agentContextFile()));
  pass(200ms);
  EXPECT_EQ(status(id), "running");
}

TEST_F(LifeTest, EndsWhatAnEarlierLifeLeftUnfinished) {
  start();
  const auto active = drop({held});
  pass(1s);
  const auto waiting = drop({held});
  pass(1s);
  start();
  for (const auto& id : {active, waiting}) {
    const auto settled = result(id);
    EXPECT_EQ(settled.status, "error");
    EXPECT_TRUE(settled.terminal);
    EXPECT_EQ(settled.message, "Corvane quit before the run finished.");
    EXPECT_EQ(settled.projectName, "Corner Shop");
    EXPECT_FALSE(settled.progress);
    EXPECT_FALSE(settled.queuePosition);
    EXPECT_EQ(settled.updatedAt, clock.date());
  }
}

TEST_F(LifeTest, LeavesEndedAndForeignResultsAlone) {
  start();
  const auto ended = drop({"Browse the catalogue"});
  ASSERT_EQ(finalResult(ended).status, "passed");
  const auto results = paths.agentResultsDirectory();
  AgentRunResult elsewhere;
  elsewhere.requestId = "../../outside";
  elsewhere.source = "run_test";
  elsewhere.setStatus(RunStatus::running);
  writeRecord(elsewhere, results / "misnamed.json");
  std::ofstream(results / "broken.json") << "{";
  std::ofstream(results / "notes.txt") << "{}";
  const auto before = home.entries();
  const auto stamp = readStamp(AgentRunResult::fileURL(ended, paths));
  start();
  EXPECT_EQ(home.entries(), before);
  EXPECT_EQ(readStamp(AgentRunResult::fileURL(ended, paths)), stamp);
  EXPECT_EQ(AgentRunResult::read(results / "misnamed.json").status, "running");
}

TEST_F(LifeTest, QuittingEndsWhatIsInHand) {
  start();
  const auto active = drop({held});
  pass(1s);
  const auto waiting = drop({held});
  pass(1s);
  standIn->quit();
  EXPECT_EQ(status(active), "error");
  EXPECT_EQ(result(active).message, "Corvane quit while the request was active.");
  EXPECT_EQ(status(waiting), "error");
  EXPECT_EQ(result(waiting).message, "Corvane quit while the request waited in the queue.");
}

TEST_F(LifeTest, ATestsHistoryOutlivesTheProgram) {
  start();
  EXPECT_FALSE(publishedTest(held).lastFailure);
  setOutcome(held, TestOutcome::Kind::failed).failedStep = 2;
  start();
  ASSERT_EQ(finalResult(drop({held})).status, "failed");
  start();
  const auto failed = publishedTest(held);
  EXPECT_EQ(failed.lastFailure.value().stepTitle, "TAP");
  EXPECT_EQ(failed.lastFailure->errorMessage, "What this step describes was not on the screen.");
  EXPECT_EQ(failed.verified, false);
  EXPECT_EQ(failed.flakinessScore, 0.0);
}

TEST_F(LifeTest, AnUnreadableContextIsSetAside) {
  start();
  std::ofstream(paths.agentContextFile()) << "{\"projects\":";
  start();
  EXPECT_EQ(AgentContext::read(paths.agentContextFile()).projects.size(), 2U);
  EXPECT_EQ(readFile(StandInPaths(paths).unreadableContextFile()), "{\"projects\":");
}

TEST_F(LifeTest, NothingItDoesLeavesItsFolder) {
  start();
  ASSERT_EQ(finalResult(drop({"Redeem a voucher"})).status, "failed");
  for (const auto& entry : home.entries()) {
    EXPECT_TRUE(entry == ".local" || entry == ".local/share" ||
                entry.starts_with(".local/share/Corvane"))
        << entry;
  }
}

class StandInSettingsTest : public StandInFixture {
 protected:
  StandInSettings load(const std::string& contents) {
    std::ofstream(file) << contents;
    problems.clear();
    return StandInSettings::load(file, problems);
  }

  const std::filesystem::path file = StandInPaths(paths).settingsFile();
  std::vector<std::string> problems;
};

TEST_F(StandInSettingsTest, WithoutAFileTheDefaultsHold) {
  EXPECT_EQ(StandInSettings::load(file, problems).stepSeconds, 0.4);
  EXPECT_THAT(problems, IsEmpty());
}

TEST_F(StandInSettingsTest, WhatIsNotNamedKeepsItsDefault) {
  const auto loaded = load(R"({"stepSeconds":2,"outcomes":{
      "Sign in":{"outcome":"failed","failedStep":1,"failureReason":"No."},
      "Check out":{"outcome":"buildFailed"}}})");
  EXPECT_EQ(loaded.stepSeconds, 2);
  EXPECT_EQ(loaded.buildSeconds, 1.5);
  EXPECT_EQ(loaded.outcomes.at("Sign in").kind, TestOutcome::Kind::failed);
  EXPECT_EQ(loaded.outcomes.at("Sign in").failedStep, 1);
  EXPECT_EQ(loaded.outcomes.at("Check out").kind, TestOutcome::Kind::buildFailed);
  EXPECT_THAT(problems, IsEmpty());
}

TEST_F(StandInSettingsTest, TimesReachFromNothingToDays) {
  const auto loaded = load(R"({"stepSeconds":0,"buildSeconds":1000000})");
  EXPECT_EQ(loaded.stepSeconds, 0);
  EXPECT_EQ(loaded.buildSeconds, 1'000'000);
  EXPECT_THAT(problems, IsEmpty());
}

// Fails when one bad value takes the rest of the file with it, or is passed over in silence.
TEST_F(StandInSettingsTest, ABadValueIsToldAndTheRestCounts) {
  for (const auto& [bad, complaint] : {
           std::pair(R"("buildSeconds":-1)", "buildSeconds: expected seconds from 0 to 1000000"),
           std::pair(R"("buildSeconds":2000000)",
                     "buildSeconds: expected seconds from 0 to 1000000"),
           std::pair(R"("buildSeconds":"fast")", "buildSeconds: expected a number"),
           std::pair(R"("buildSecond":9)", "buildSecond: there is no such setting"),
           std::pair(R"("outcomes":[])", "outcomes: expected an object"),
       }) {
    const auto loaded = load(std::string(R"({"stepSeconds":2,)") + bad + R"(,"captures":false})");
    EXPECT_THAT(problems, ElementsAre(complaint));
    EXPECT_EQ(loaded.stepSeconds, 2) << bad;
    EXPECT_EQ(loaded.buildSeconds, 1.5) << bad;
    EXPECT_FALSE(loaded.captures) << bad;
  }
}

// Fails when a bad outcome takes those of other tests with it.
TEST_F(StandInSettingsTest, ABadOutcomeIsToldAndTheOthersCount) {
  for (const auto& [bad, complaint] : {
           std::pair(
               R"({"outcome":"fine"})",
               "outcomes.B.outcome: expected one of passed, failed, healed, blocked, warning, "
               "buildFailed, wedged, hold, crash"),
           std::pair(R"({"failedStep":1})", "outcomes.B.outcome: required"),
           std::pair(R"({"outcome":"failed","failedStep":-1})",
                     "outcomes.B.failedStep: expected a step number from 0"),
           std::pair(R"("failed")", "outcomes.B: expected an object"),
       }) {
    const auto loaded =
        load(std::string(R"({"stepSeconds":2,"outcomes":{"A":{"outcome":"hold"},"B":)") + bad +
             R"(,"C":{"outcome":"crash"}}})");
    EXPECT_THAT(problems, ElementsAre(complaint));
    EXPECT_EQ(loaded.stepSeconds, 2) << bad;
    EXPECT_EQ(loaded.outcomes.at("A").kind, TestOutcome::Kind::hold) << bad;
    EXPECT_FALSE(loaded.outcomes.contains("B")) << bad;
    EXPECT_EQ(loaded.outcomes.at("C").kind, TestOutcome::Kind::crash) << bad;
  }
}

// Fails when a misspelt member of an outcome is passed over.
TEST_F(StandInSettingsTest, AnUnknownKeyOfAnOutcomeIsToldAndTheRestOfItCounts) {
  const auto loaded =
      load(R"({"outcomes":{"A":{"outcome":"failed","failStep":3,"failureReason":"No."}}})");
  EXPECT_THAT(problems, ElementsAre("outcomes.A.failStep: there is no such setting"));
  EXPECT_EQ(loaded.outcomes.at("A").failureReason, "No.");
}

TEST_F(StandInSettingsTest, AFileThatIsNoObjectIsToldOnce) {
  for (const char* contents : {R"({"stepSeconds":2)", "[]", ""}) {
    EXPECT_EQ(load(contents).stepSeconds, 0.4) << contents;
    EXPECT_EQ(problems.size(), 1U) << contents;
  }
}

TEST_F(StandInSettingsTest, NoNumberIsNoTime) {
  StandInSettings asked;
  asked.heartbeatSeconds = std::nan("");
  EXPECT_TRUE(asked.problem());
}

}  // namespace
}  // namespace corvane::testing
