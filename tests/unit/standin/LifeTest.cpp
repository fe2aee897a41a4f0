#include <gmock/gmock.h>

#include <fstream>

#include "tests/unit/standin/StandInFixture.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::HasSubstr;
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

}  // namespace
}  // namespace corvane::testing
