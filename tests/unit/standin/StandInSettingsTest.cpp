#include "corvane_standin/StandInSettings.h"

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>

#include "tests/unit/standin/StandInFixture.h"

namespace corvane::standin {
namespace {

using testing::HasSubstr;

class StandInSettingsTest : public StandInFixture {
 protected:
  StandInSettings load(const std::string& contents) {
    std::ofstream(files.settingsFile()) << contents;
    return StandInSettings::load(files.settingsFile(), told);
  }
  [[nodiscard]] std::string logged() const { return readFile(files.logFile()); }

  const StandInPaths files{paths};
  StandInLog told{files.logFile(), clock};
};

TEST_F(StandInSettingsTest, WithoutAFileTheDefaultsHold) {
  EXPECT_EQ(StandInSettings::load(files.settingsFile(), told).stepSeconds, 0.4);
  EXPECT_EQ(logged(), "");
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
  EXPECT_EQ(logged(), "");
}

TEST_F(StandInSettingsTest, BadSettingsGiveWayToTheDefaultsAndAreTold) {
  for (const auto& [contents, complaint] : {
           std::pair(R"({"stepSeconds":2,"buildSeconds":-1})", "buildSeconds: expected seconds"),
           std::pair(R"({"stepSeconds":2000000})", "stepSeconds: expected seconds"),
           std::pair(R"({"stepSeconds":"fast"})", "stepSeconds: expected a number"),
           std::pair(R"({"stepSeconds":2,"outcomes":{"A":{"outcome":"fine"}}})",
                     "outcomes.A.outcome: expected one of passed, failed, healed"),
           std::pair(R"({"stepSeconds":2,"outcomes":{"A":{"outcome":"failed","failedStep":-1}}})",
                     "outcomes.A.failedStep: expected a step number from 0"),
           std::pair(R"({"stepSeconds":2)", "settings.json is not used"),
       }) {
    EXPECT_EQ(load(contents).stepSeconds, 0.4) << contents;
    EXPECT_THAT(logged(), HasSubstr(complaint)) << contents;
  }
}

TEST_F(StandInSettingsTest, NoNumberIsNoTime) {
  StandInSettings asked;
  asked.heartbeatSeconds = std::nan("");
  EXPECT_TRUE(asked.problem());
}

}  // namespace
}  // namespace corvane::standin
