#include "corvane_standin/scenario/ScenarioFile.h"

#include <gmock/gmock.h>

#include <cmath>

#include "corvane_standin/scenario/ScenarioSchema.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ScenarioFileTest : public ::testing::Test {
 protected:
  Scenario read(const std::string& contents) const {
    TestFiles::write(file, contents);
    return Scenario::read(file, "bench.json");
  }

  const TemporaryHome home;
  const std::filesystem::path file = home.path() / "bench.json";
};

TEST_F(ScenarioFileTest, WhatIsNotNamedKeepsItsDefault) {
  const auto [settings, workspace, problems, hints] = read(R"({"stepSeconds":2,"outcomes":{
      "Sign in":{"outcome":"failed","failedStep":1,"failureReason":"No."},
      "Check out":{"outcome":"buildFailed"}}})");
  EXPECT_EQ(settings.stepSeconds, 2);
  EXPECT_EQ(settings.buildSeconds, 1.5);
  EXPECT_EQ(settings.outcomes.at("Sign in").kind, TestOutcome::Kind::failed);
  EXPECT_EQ(settings.outcomes.at("Sign in").failedStep, 1);
  EXPECT_EQ(settings.outcomes.at("Check out").kind, TestOutcome::Kind::buildFailed);
  EXPECT_FALSE(workspace);
  EXPECT_THAT(problems, IsEmpty());
}

TEST_F(ScenarioFileTest, TimesReachFromNothingToDays) {
  const auto scenario = read(R"({"stepSeconds":0,"buildSeconds":1000000})");
  EXPECT_EQ(scenario.settings.stepSeconds, 0);
  EXPECT_EQ(scenario.settings.buildSeconds, 1'000'000);
  EXPECT_THAT(scenario.problems, IsEmpty());
}

// Fails when one bad value takes the rest of the file with it, or is passed over in silence.
TEST_F(ScenarioFileTest, ABadSettingIsToldAndTheRestCounts) {
  for (const auto& [bad, complaint] : {
           std::pair(R"("buildSeconds": -1)",
                     "bench.json: line 2, column 17: buildSeconds: expected seconds from 0 to "
                     "1000000"),
           std::pair(R"("buildSeconds": 1000001)",
                     "bench.json: line 2, column 17: buildSeconds: expected seconds from 0 to "
                     "1000000"),
           std::pair(R"("buildSeconds": "fast")",
                     "bench.json: line 2, column 17: buildSeconds: expected a number"),
           std::pair(R"("buildSecond": 9)",
                     "bench.json: line 2, column 1: buildSecond: there is no such setting. Did you "
                     "mean 'buildSeconds'?"),
           std::pair(R"("speed": 9)",
                     "bench.json: line 2, column 1: speed: there is no such setting; there are "
                     "$schema, stepSeconds, buildSeconds, heartbeatSeconds, coldStartSeconds, "
                     "pickUpSeconds, creditsPerExploredStep, creditBalance, captures, clock, ids, "
                     "workspace, outcomes, imports, explorations, libraryRequests"),
           std::pair(R"("workspace": "")",
                     "bench.json: line 2, column 14: workspace: expected the name of a file"),
           std::pair(R"("outcomes": [])",
                     "bench.json: line 2, column 13: outcomes: expected an object"),
           std::pair(R"("ids": "byname")",
                     "bench.json: line 2, column 8: ids: expected one of random, byName. Did you "
                     "mean 'byName'?"),
           std::pair(
               R"("clock": "2026-01-31T12:00:00.5Z")",
               "bench.json: line 2, column 10: clock: expected an ISO 8601 date-time in whole "
               "seconds"),
       }) {
    const auto scenario =
        read(std::string("{\"stepSeconds\":2,\n") + bad + ",\n\"captures\":false}");
    EXPECT_THAT(scenario.problems, ElementsAre(complaint));
    EXPECT_EQ(scenario.settings.stepSeconds, 2) << bad;
    EXPECT_EQ(scenario.settings.buildSeconds, 1.5) << bad;
    EXPECT_FALSE(scenario.settings.captures) << bad;
  }
}

// Fails when a bad outcome takes those of other tests with it.
TEST_F(ScenarioFileTest, ABadOutcomeIsToldAndTheOthersCount) {
  for (const auto& [bad, complaint] : {
           std::pair(
               R"({"outcome":"faild"})",
               "bench.json: line 3, column 16: outcomes.B.outcome: expected one of passed, "
               "failed, healed, blocked, warning, buildFailed, wedged, hang, hold, crash. Did "
               "you mean 'failed'?"),
           std::pair(R"({"outcome":"fine"})",
                     "bench.json: line 3, column 16: outcomes.B.outcome: expected one of passed, "
                     "failed, healed, blocked, warning, buildFailed, wedged, hang, hold, crash"),
           std::pair(R"({"failedStep":1})",
                     "bench.json: line 3, column 5: outcomes.B.outcome: required"),
           std::pair(R"({"outcome":"failed","failedStep":-1})",
                     "bench.json: line 3, column 38: outcomes.B.failedStep: expected a step number "
                     "from 0"),
           std::pair(R"({"outcome":"failed","times":0})",
                     "bench.json: line 3, column 33: outcomes.B.times: expected a number of times "
                     "from 1"),
           std::pair(R"({"outcome":"passed","tornResult":{"wholeAfterSeconds":-1}})",
                     "bench.json: line 3, column 59: outcomes.B.tornResult.wholeAfterSeconds: "
                     "expected seconds from 0 to 1000000"),
           std::pair(R"("failed")", "bench.json: line 3, column 5: outcomes.B: expected an object"),
       }) {
    const auto scenario =
        read(std::string("{\"stepSeconds\":2,\"outcomes\":{\n") +
             "\"A\":{\"outcome\":\"hold\"},\n\"B\":" + bad + ",\n\"C\":{\"outcome\":\"crash\"}}}");
    EXPECT_THAT(scenario.problems, ElementsAre(complaint));
    const auto& outcomes = scenario.settings.outcomes;
    EXPECT_EQ(scenario.settings.stepSeconds, 2) << bad;
    EXPECT_EQ(outcomes.at("A").kind, TestOutcome::Kind::hold) << bad;
    EXPECT_FALSE(outcomes.contains("B")) << bad;
    EXPECT_EQ(outcomes.at("C").kind, TestOutcome::Kind::crash) << bad;
  }
}

// Fails when a misspelt member of an outcome is passed over, or looked for only in those of tests.
TEST_F(ScenarioFileTest, AnUnknownKeyInsideIsToldAndTheRestCounts) {
  const auto scenario = read(
      "{\"outcomes\":{\"A\":{\"outcome\":\"failed\",\"failStep\":3,\"failureReason\":\"No.\"}},\n"
      "\"libraryRequests\":{\"extract_udi\":{\"outcome\":\"failed\",\"time\":3},\n"
      "\"extract\":{\"outcome\":\"failed\"}}}");
  EXPECT_THAT(
      scenario.problems,
      ElementsAre("bench.json: line 1, column 38: outcomes.A.failStep: there is no such "
                  "setting. Did you mean 'failedStep'?",
                  "bench.json: line 2, column 54: libraryRequests.extract_udi.time: there is "
                  "no such setting. Did you mean 'times'?",
                  "bench.json: line 3, column 1: libraryRequests.extract: there is no such "
                  "setting. Did you mean 'extract_udi'?"));
  EXPECT_EQ(scenario.settings.outcomes.at("A").failureReason, "No.");
  EXPECT_EQ(scenario.settings.libraryRequests.extractUdi.value().kind,
            RequestOutcome::Kind::failed);
}

// Fails when problems come in the order in which they are found.
TEST_F(ScenarioFileTest, ProblemsComeInTheOrderOfTheFile) {
  const auto scenario = read(
      "{\"outcomes\":{\"A\":{\"outcome\":\"crashes\"}},\n\"stepsSeconds\":1,\n"
      "\"imports\":{\"*\":{\"outcome\":\"blokced\"}}}");
  EXPECT_THAT(
      scenario.problems,
      ElementsAre("bench.json: line 1, column 29: outcomes.A.outcome: expected one of "
                  "passed, failed, healed, blocked, warning, buildFailed, wedged, hang, "
                  "hold, crash. Did you mean 'crash'?",
                  "bench.json: line 2, column 1: stepsSeconds: there is no such setting. Did "
                  "you mean 'stepSeconds'?",
                  "bench.json: line 3, column 27: imports.*.outcome: expected one of "
                  "fulfilled, failed, blocked, wedged, hang, hold, crash. Did you mean "
                  "'blocked'?"));
}

TEST_F(ScenarioFileTest, WhatIsNoScenarioIsToldOnce) {
  EXPECT_THAT(read("{\n  \"stepSeconds\": 2\n").problems,
              ElementsAre("bench.json: line 3, column 1: not valid JSON: the text ends too early"));
  EXPECT_THAT(read("[]").problems, ElementsAre("bench.json: line 1, column 1: expected an object"));
  EXPECT_EQ(read("[]").settings.stepSeconds, 0.4);
  EXPECT_THAT(Scenario::read(home.path() / "none.json", "none.json").problems,
              ElementsAre("could not read " + (home.path() / "none.json").string() +
                          ": No such file or directory"));
}

TEST_F(ScenarioFileTest, AWorkspaceLiesBesideTheFile) {
  TestFiles::write(home.path() / "shop.json",
                   R"({"schemaVersion":1,"updatedAt":"2026-01-31T12:00:00Z",
      "projects":[{"name":"Shop","suites":[],"tests":[]}]})");
  const auto scenario = read(R"({"workspace":"shop.json"})");
  EXPECT_THAT(scenario.problems, IsEmpty());
  EXPECT_EQ(scenario.workspace.value().projects.at(0).name, "Shop");

  TestFiles::write(
      home.path() / "shop.json",
      "{\"schemaVersion\":1,\"updatedAt\":\"2026-01-31T12:00:00Z\",\n\"projects\":[{}]}");
  EXPECT_THAT(read(R"({"workspace":"shop.json"})").problems,
              ElementsAre("shop.json: line 2, column 13: projects[0].name: required"));
}

// Fails when names that are far from every other are taken for mistakes, or known ones.
TEST_F(ScenarioFileTest, NamesThatAreNearlyRightAreHintedAt) {
  const auto scenario = read(
      "{\"outcomes\":{\"Sign in\":{\"outcome\":\"passed\"},\n"
      "\"Brows the catalogue\":{\"outcome\":\"passed\"},\n"
      "\"Something new\":{\"outcome\":\"passed\"},"
      "\"*\":{\"outcome\":\"passed\"}},\n"
      "\"explorations\":{\"Corner shop\":{\"outcome\":\"failed\"}}}");
  EXPECT_THAT(scenario.problems, IsEmpty());
  EXPECT_THAT(scenario.hints,
              ElementsAre("bench.json: line 2, column 1: outcomes.Brows the catalogue: nothing in "
                          "the workspace is called so. Did you mean 'Browse the catalogue'?",
                          "bench.json: line 4, column 17: explorations.Corner shop: nothing in the "
                          "workspace is called so. Did you mean 'Corner Shop'?"));
}

TEST(StandInSettings, NoNumberIsNoTime) {
  StandInSettings asked;
  asked.heartbeatSeconds = std::nan("");
  EXPECT_EQ(asked.problem(), "heartbeatSeconds: expected seconds from 0 to 1000000");
}

// Fails when the settings have changed since the schema was written:
// Corvane --scenario-schema > docs/scenario.schema.json
TEST(ScenarioSchema, IsTheOneInTheDocuments) {
  EXPECT_EQ(scenarioSchema(), TestFiles::read(CORVANE_SCENARIO_SCHEMA));
}

}  // namespace
}  // namespace corvane::testing
