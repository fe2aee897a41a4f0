#include <gmock/gmock.h>

#include <set>

#include "corvane_standin/workspace/Workspace.h"
#include "tests/unit/standin/StandInFixture.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::ElementsAre;
using Action = AgentLibraryRequest::Action;

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
  WorkspaceStore store{paths, clock, quiet, firstWorkspace()};
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

// Fails when the score from which on a test is flaky is any other.
TEST_F(WorkspaceStoreTest, ATestIsFlakyFromThreeTenthsOn) {
  for (const auto& [before, after, isFlaky] :
       {std::tuple(0.4, 0.3, true), std::tuple(0.39, 0.29, false)}) {
    store.update([before](AgentContext& workspace) {
      workspace.projects.at(0).tests.at(3).flakinessScore = before;
    });
    record("passed");
    EXPECT_EQ(test().flakinessScore, after);
    EXPECT_EQ(test().isFlaky, isFlaky) << after;
  }
}

// Fails when the workspace itself is changed, and not a copy of it.
TEST_F(WorkspaceStoreTest, AChangeThatIsRefusedLeavesNoTrace) {
  const auto projects = store.workspace().projects.size();
  EXPECT_THROW(store.update([](AgentContext& workspace) {
    workspace.projects.clear();
    throw RequestRefused("no");
  }),
               RequestRefused);
  EXPECT_EQ(store.workspace().projects.size(), projects);
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

class LibraryTest : public StandInFixture {
 protected:
  void SetUp() override { start(); }

  [[nodiscard]] AgentLibraryRequest libraryRequest(Action action) const {
    AgentLibraryRequest request;
    request.requestId = makeRequestId();
    request.action = action;
    request.createdAt = clock.date();
    return request;
  }

  [[nodiscard]] AgentLibraryRequest extraction(const std::string& test, std::int64_t fromStep,
                                               std::int64_t toStep) const {
    auto request = libraryRequest(Action::extractUdi);
    request.projectName = "Corner Shop";
    request.testName = test;
    request.fromStep = fromStep;
    request.toStep = toStep;
    request.udiName = "Block";
    return request;
  }

  [[nodiscard]] std::optional<AgentContext::UdiContext> publishedUdi(
      const std::string& name) const {
    const auto workspace = published();
    for (const auto& udi : workspace.userDefinedInteractions.value()) {
      if (udi.name == name) return udi;
    }
    return std::nullopt;
  }
};

TEST_F(LibraryTest, ExtractsARangeWithItsParameters) {
  const auto result = finalResult(drop(extraction("Sign in", 0, 3)));
  EXPECT_EQ(result.status, "extracted");
  EXPECT_EQ(result.source, "extract_udi");
  EXPECT_EQ(result.projectName, "Corner Shop");
  EXPECT_EQ(result.message, "Extracted 'Block': 4 steps.");
  const auto block = publishedUdi("Block");
  ASSERT_TRUE(block);
  ASSERT_TRUE(result.udi);
  EXPECT_EQ(result.udi->udiId, block->id);
  EXPECT_EQ(result.udi->name, "Block");
  EXPECT_EQ(result.udi->stepCount, 4);
  EXPECT_EQ(result.udi->parameterNames, block->parameterNames);
  EXPECT_EQ(block->sourceProjectName, "Corner Shop");
  const auto source = publishedTest("Sign in").steps;
  EXPECT_EQ(stepLines(block->steps), stepLines({source.begin(), source.begin() + 4}));
  ASSERT_TRUE(block->parameterNames);
  EXPECT_THAT(*block->parameterNames, ElementsAre("username"));
}

TEST_F(LibraryTest, ABlockWithoutPlaceholdersHasNoParameters) {
  const auto result = finalResult(drop(extraction("Browse the catalogue", 2, 2)));
  EXPECT_EQ(result.message, "Extracted 'Block': 1 step.");
  EXPECT_FALSE(result.udi.value().parameterNames);
}

// Fails when a range may not reach to the last step.
TEST_F(LibraryTest, ARangeMayReachToTheEnd) {
  EXPECT_EQ(finalResult(drop(extraction("Browse the catalogue", 3, 4))).status, "extracted");
}

TEST_F(LibraryTest, ATakenNameIsBlockedUnlessOverwritten) {
  const auto first = finalResult(drop(extraction("Browse the catalogue", 0, 1)));
  const auto taken = finalResult(drop(extraction("Browse the catalogue", 2, 3)));
  EXPECT_EQ(taken.status, "blocked");
  EXPECT_EQ(taken.blocked.value().code, "udiNameTaken");
  EXPECT_EQ(taken.message,
            "The library has a building block named 'Block' already. Pass overwrite:true to "
            "replace its steps, or choose another name.");
  EXPECT_FALSE(taken.udi);
  EXPECT_EQ(publishedUdi("Block")->steps.front().type, "waitToLoad");

  // Whoever says that nothing is to be overwritten says what holds anyway.
  auto careful = extraction("Browse the catalogue", 2, 3);
  careful.overwrite = false;
  EXPECT_EQ(finalResult(drop(careful)).status, "blocked");
  EXPECT_EQ(publishedUdi("Block")->steps.front().type, "waitToLoad");

  auto overwriting = extraction("Browse the catalogue", 2, 3);
  overwriting.overwrite = true;
  const auto replaced = finalResult(drop(overwriting));
  EXPECT_EQ(replaced.status, "extracted");
  EXPECT_EQ(replaced.udi.value().udiId, first.udi.value().udiId);
  EXPECT_EQ(publishedUdi("Block")->steps.front().type, "scroll");
}

TEST_F(LibraryTest, WhatDoesNotExistCannotBeExtracted) {
  EXPECT_EQ(finalResult(drop(extraction("Nothing", 0, 0))).status, "error");
  const auto beyond = finalResult(drop(extraction("Browse the catalogue", 3, 5)));
  EXPECT_EQ(beyond.status, "error");
  EXPECT_EQ(beyond.message,
            "The test 'Browse the catalogue' has the steps 0 to 4: steps 3 to 5 cannot be taken "
            "out of it.");
  auto elsewhere = extraction("Sign in", 0, 0);
  elsewhere.projectName = "Nowhere";
  EXPECT_EQ(finalResult(drop(elsewhere)).message,
            "There is no project named 'Nowhere'. Projects: 'Corner Shop', 'Trail Log'.");
  EXPECT_FALSE(publishedUdi("Block"));
}

TEST_F(LibraryTest, DeletesABlock) {
  auto deletion = libraryRequest(Action::deleteUdi);
  deletion.udiName = "Fill shipping address";
  const auto result = finalResult(drop(deletion));
  EXPECT_EQ(result.status, "deleted");
  EXPECT_EQ(result.source, "delete_udi");
  EXPECT_FALSE(result.projectName);
  EXPECT_EQ(result.message, "Deleted 'Fill shipping address' from the library.");
  EXPECT_FALSE(publishedUdi("Fill shipping address"));

  deletion.requestId = makeRequestId();
  const auto again = finalResult(drop(deletion));
  EXPECT_EQ(again.status, "error");
  EXPECT_EQ(again.message,
            "The library has no building block named 'Fill shipping address'. Building blocks: "
            "none.");
}

TEST_F(LibraryTest, ResetsAWorldMapAndNothingElse) {
  const auto before = publishedProject("Corner Shop");
  ASSERT_TRUE(before.worldMap);
  auto reset = libraryRequest(Action::resetWorldMap);
  reset.projectName = "Corner Shop";
  const auto result = finalResult(drop(reset));
  EXPECT_EQ(result.status, "deleted");
  EXPECT_EQ(result.source, "reset_world_map");
  EXPECT_EQ(result.message, "Reset the world map of 'Corner Shop'.");
  const auto after = publishedProject("Corner Shop");
  EXPECT_FALSE(after.worldMap);
  EXPECT_EQ(after.tests.size(), before.tests.size());
  EXPECT_TRUE(publishedUdi("Fill shipping address"));

  reset.requestId = makeRequestId();
  EXPECT_EQ(finalResult(drop(reset)).status, "deleted");
}

}  // namespace
}  // namespace corvane::testing
