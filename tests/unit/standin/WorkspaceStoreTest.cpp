#include "corvane_standin/workspace/WorkspaceStore.h"

#include <set>

#include "corvane_standin/workspace/FirstWorkspace.h"
#include "tests/unit/standin/StandInFixture.h"

namespace corvane::standin {
namespace {

class WorkspaceStoreTest : public StandInFixture {
 protected:
  void record(const std::string& status) {
    AgentRunResult::Test outcome;
    outcome.testId = test().id;
    outcome.status = status;
    store.record("Corner Shop", outcome);
  }
  [[nodiscard]] const AgentContext::TestContext& test() const {
    return store.workspace().projects.at(0).tests.at(3);
  }

  StandInLog quiet{StandInPaths(paths).logFile(), clock};
  WorkspaceStore store{paths, clock, quiet};
};

TEST_F(WorkspaceStoreTest, ATestThatPassedIsVerifiedForGood) {
  ASSERT_EQ(test().verified, false);
  record("passed");
  EXPECT_EQ(test().verified, true);
  record("failed");
  EXPECT_EQ(test().verified, true);
}

TEST_F(WorkspaceStoreTest, AWarningVerifiesNothing) {
  record("warning");
  EXPECT_EQ(test().verified, false);
}

TEST_F(WorkspaceStoreTest, AlternatingMakesATestFlakyAndSteadyRunsCalmIt) {
  ASSERT_FALSE(test().flakinessScore);
  record("passed");
  EXPECT_EQ(test().flakinessScore, 0.0);
  record("failed");
  EXPECT_EQ(test().flakinessScore, 0.25);
  EXPECT_EQ(test().isFlaky, false);
  record("passed");
  EXPECT_EQ(test().flakinessScore, 0.44);
  EXPECT_EQ(test().isFlaky, true);
  for (int run = 0; run < 4; ++run) record("passed");
  EXPECT_EQ(test().flakinessScore, 0.14);
  EXPECT_EQ(test().isFlaky, false);
}

TEST_F(WorkspaceStoreTest, EveryChangeIsPublished) {
  store.publish();
  record("passed");
  EXPECT_EQ(publishedTest(test().name).verified, true);
}

TEST_F(WorkspaceStoreTest, AContextThatWasTakenAwayIsNotBroughtBack) {
  store.publish();
  std::filesystem::remove_all(paths.agentMCPDirectory());
  record("passed");
  EXPECT_FALSE(fileExists(paths.agentMCPDirectory()));
}

TEST_F(WorkspaceStoreTest, TheFirstWorkspaceHoldsTogether) {
  std::set<std::string> names;
  for (const auto& project : firstWorkspace().projects) {
    std::set<std::string> ids;
    for (const auto& each : project.tests) {
      EXPECT_TRUE(ids.insert(each.id).second) << each.name;
      EXPECT_FALSE(each.steps.empty()) << each.name;
      names.insert(each.name);
    }
    for (const auto& suite : project.suites) {
      for (const auto& id : suite.testIds) EXPECT_TRUE(ids.contains(id)) << suite.name;
    }
  }
  for (const auto& [name, outcome] : firstOutcomes()) EXPECT_TRUE(names.contains(name)) << name;
}

}  // namespace
}  // namespace corvane::standin
