#include <gmock/gmock.h>

#include <filesystem>

#include "corvane_standin/program/Ids.h"
#include "tests/support/TestFiles.h"
#include "tests/unit/standin/StandInFixture.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::ElementsAre;
using Kind = TestOutcome::Kind;
using RequestKind = RequestOutcome::Kind;
using namespace std::chrono_literals;

const char* const cart = "Add to cart and remove";
const char* const catalogue = "Browse the catalogue";

class ScenarioTest : public StandInFixture {
 protected:
  /// The statuses of so many runs of a test, one after the other.
  std::vector<std::string> runs(const std::string& test, int count) {
    std::vector<std::string> statuses;
    for (int i = 0; i < count; ++i) statuses.push_back(finalResult(drop({test})).status);
    return statuses;
  }

  [[nodiscard]] bool lies(const std::string& id) const {
    return fileExists(AgentRunRequest::fileURL(id, paths));
  }
  [[nodiscard]] std::filesystem::path resultFile(const std::string& id) const {
    return AgentRunResult::fileURL(id, paths);
  }
};

// Fails when runs of one test count for another, or the last of the failing runs passes.
TEST_F(ScenarioTest, ATestFailsAsOftenAsAskedAndThenPasses) {
  setOutcome(cart, Kind::failed).times = 2;
  setOutcome(catalogue, Kind::failed).times = 1;
  start();
  EXPECT_THAT(runs(catalogue, 2), ElementsAre("failed", "passed"));
  EXPECT_THAT(runs(cart, 4), ElementsAre("failed", "failed", "passed", "passed"));
}

TEST_F(ScenarioTest, TimesCountAnewInTheNextLife) {
  setOutcome(cart, Kind::failed).times = 1;
  start();
  EXPECT_THAT(runs(cart, 2), ElementsAre("failed", "passed"));
  start();
  EXPECT_THAT(runs(cart, 2), ElementsAre("failed", "passed"));
}

// Fails when a run that never began counts.
TEST_F(ScenarioTest, ARunThatIsRefusedDoesNotCount) {
  setOutcome(cart, Kind::failed).times = 1;
  start();
  EXPECT_EQ(finalResult(drop({cart, "Sign in"})).status, "blocked");
  EXPECT_THAT(runs(cart, 2), ElementsAre("failed", "passed"));
}

// Fails when what is said of all others goes before a name, or behind the first outcomes.
TEST_F(ScenarioTest, AStarStandsForAllOtherTests) {
  setOutcome("*", Kind::warning);
  setOutcome(cart, Kind::passed);
  start();
  EXPECT_THAT(runs(cart, 1), ElementsAre("passed"));
  EXPECT_THAT(runs(catalogue, 1), ElementsAre("warning"));
  EXPECT_THAT(runs("Redeem a voucher", 1), ElementsAre("warning"));
}

TEST_F(ScenarioTest, ATestHasItsOwnSpeed) {
  setOutcome(cart, Kind::passed).stepSeconds = 2;
  start();
  const auto last = finalResult(drop({cart, catalogue}));
  EXPECT_EQ(last.tests.value().at(0).steps.at(0).durationSeconds, 2);
  EXPECT_EQ(last.tests->at(1).steps.at(0).durationSeconds, 0.4);
}

TEST_F(ScenarioTest, ARequestIsPickedUpSlowly) {
  settings.pickUpSeconds = 5;
  start();
  const auto id = drop({catalogue});
  pass(4900ms);
  EXPECT_TRUE(lies(id));
  EXPECT_FALSE(fileExists(resultFile(id)));
  pass(300ms);
  EXPECT_FALSE(lies(id));
  EXPECT_EQ(status(id), "running");
}

// Fails when the first of the tests decides, or those of a suite are not looked at.
TEST_F(ScenarioTest, ARunIsPickedUpWhenItsSlowestTestIs) {
  settings.pickUpSeconds = 1;
  setOutcome(cart, Kind::passed).pickUpSeconds = 3;
  setOutcome(catalogue, Kind::passed).pickUpSeconds = 0;
  start();
  auto suite = request({});
  suite.target.choice = AgentRunRequest::Target::SuiteByName{"Purchase"};
  const auto slow = drop(suite);
  const auto fast = drop({catalogue});
  const auto ordinary = drop({"Switch to miles"});
  pass(500ms);
  EXPECT_FALSE(lies(fast));
  EXPECT_TRUE(lies(ordinary));
  pass(700ms);
  EXPECT_FALSE(lies(ordinary));
  pass(1700ms);
  EXPECT_TRUE(lies(slow));
  pass(400ms);
  EXPECT_FALSE(lies(slow));
}

// Fails when a request that was withdrawn makes a later one of its name wait less.
TEST_F(ScenarioTest, ARequestCanBeWithdrawnBeforeItIsPickedUp) {
  settings.pickUpSeconds = 5;
  start();
  auto wanted = request({catalogue});
  drop(wanted);
  pass(4s);
  std::filesystem::remove(AgentRunRequest::fileURL(wanted.requestId, paths));
  pass(4s);
  EXPECT_FALSE(fileExists(resultFile(wanted.requestId)));
  drop(wanted);
  pass(4s);
  EXPECT_TRUE(lies(wanted.requestId));
}

TEST_F(ScenarioTest, AProgramThatHangsDoesNothingAnyMore) {
  setOutcome(cart, Kind::hang).failedStep = 2;
  start();
  const auto hung = drop({cart});
  const auto waiting = drop({catalogue});
  pass(10s);
  const auto stamp = readStamp(resultFile(hung));
  const auto waitingStamp = readStamp(resultFile(waiting));
  const auto activityStamp = readStamp(paths.agentActivityFile());
  EXPECT_EQ(result(hung).progress.value().currentStep, 3);
  const auto late = drop({catalogue});
  dropCancelMarker(hung);
  pass(1h);
  standIn->quit();
  EXPECT_EQ(readStamp(resultFile(hung)), stamp);
  EXPECT_EQ(readStamp(resultFile(waiting)), waitingStamp);
  EXPECT_EQ(readStamp(paths.agentActivityFile()), activityStamp);
  EXPECT_TRUE(lies(late));
  // It does not even look at what it was doing, which it would tell again.
  const auto lines = TestFiles::read(StandInPaths(paths).logFile());
  const std::string told = "doing nothing any more, as an outcome asks for";
  EXPECT_EQ(lines.find(told), lines.rfind(told));
  EXPECT_NE(lines.find(told), std::string::npos);
  // The next life settles what this one left behind.
  start();
  EXPECT_EQ(status(hung), "error");
}

// Fails when the torn file can be read, or is torn before the run has ended.
TEST_F(ScenarioTest, AResultIsTornAndThenWhole) {
  setOutcome(cart, Kind::failed).tornResult = TornResult{.wholeAfterSeconds = 3};
  start();
  const auto id = drop({cart});
  pass(1s);
  EXPECT_EQ(status(id), "running");
  pass(1s);
  EXPECT_THROW((void)result(id), DecodeError);
  const auto torn = TestFiles::read(resultFile(id));
  pass(2s);
  EXPECT_THROW((void)result(id), DecodeError);
  pass(2s);
  EXPECT_EQ(status(id), "failed");
  const auto whole = TestFiles::read(resultFile(id));
  EXPECT_EQ(torn.size(), whole.size() / 2);
  EXPECT_TRUE(whole.starts_with(torn));
}

TEST_F(ScenarioTest, AResultStaysTornUnlessItsTimeIsNamed) {
  auto& outcome = setOutcome(cart, Kind::passed);
  outcome.tornResult.emplace();
  outcome.times = 1;
  start();
  const auto id = drop({catalogue, cart});
  pass(1h);
  EXPECT_THROW((void)result(id), DecodeError);
  EXPECT_THAT(runs(cart, 1), ElementsAre("passed"));
}

class ScriptedRequestTest : public ScenarioTest {
 protected:
  [[nodiscard]] AgentExploreRequest exploration() const {
    AgentExploreRequest request;
    request.requestId = makeRequestId();
    request.projectName = "Corner Shop";
    request.goal = "Open the cart";
    request.createdAt = clock.date();
    return request;
  }
  [[nodiscard]] AgentLibraryRequest deletion() const {
    AgentLibraryRequest request;
    request.requestId = makeRequestId();
    request.action = AgentLibraryRequest::Action::deleteUdi;
    request.udiName = "Fill shipping address";
    request.createdAt = clock.date();
    return request;
  }
  /// A payload of one test, as the server writes them, but empty.
  [[nodiscard]] AgentTestSchema payload(const std::string& test) const {
    AgentTestSchema payload;
    payload.requestId = makeRequestId();
    payload.projectName = "Corner Shop";
    payload.createdAt = clock.date();
    payload.tests.emplace_back().name = test;
    return payload;
  }
  std::string dropPayload(const AgentTestSchema& payload) const {
    writeRecord(payload, paths.agentImportsDirectory() / (*payload.requestId + ".corvane.json"));
    return *payload.requestId;
  }

  RequestOutcome outcome(RequestKind kind) const {
    RequestOutcome outcome;
    outcome.kind = kind;
    return outcome;
  }
};

TEST_F(ScriptedRequestTest, AnImportIsRejected) {
  auto& rejected = settings.imports["Order"] = outcome(RequestKind::failed);
  rejected.failureReason = "No such screen.";
  rejected.times = 1;
  start();
  const auto versions = follow(dropPayload(payload("Order")));
  EXPECT_EQ(versions.at(1).status, "validating");
  const auto& last = versions.back();
  EXPECT_EQ(last.status, "importFailed");
  EXPECT_EQ(last.source, "create_test");
  EXPECT_EQ(last.projectName, "Corner Shop");
  EXPECT_EQ(last.message, "No such screen.");
  EXPECT_EQ(last.validationIssues.value().at(0).message, "No such screen.");
  // The second one is checked for what it is: a test without a step.
  const auto second = finalResult(dropPayload(payload("Order")));
  EXPECT_EQ(second.message, "Nothing was imported: 3 errors in the payload.");
}

TEST_F(ScriptedRequestTest, AnExplorationIsBlocked) {
  auto& blocked = settings.explorations["*"] = outcome(RequestKind::blocked);
  blocked.blockedCode = "notSignedIn";
  blocked.blockedMessage = "Sign in first.";
  start();
  const auto versions = follow(drop(exploration()));
  EXPECT_EQ(versions.at(1).status, "authoring");
  EXPECT_EQ(versions.back().status, "blocked");
  EXPECT_EQ(versions.back().blocked.value().code, "notSignedIn");
  EXPECT_EQ(versions.back().message, "Sign in first.");
  EXPECT_EQ(publishedProject("Corner Shop").tests.size(), 6U);
}

TEST_F(ScriptedRequestTest, ALibraryRequestEndsAsAnErrorAndChangesNothing) {
  settings.libraryRequests.deleteUdi = outcome(RequestKind::failed);
  start();
  const auto last = finalResult(drop(deletion()));
  EXPECT_EQ(last.status, "error");
  EXPECT_EQ(last.source, "delete_udi");
  EXPECT_EQ(last.message, "Corvane could not do what was asked.");
  EXPECT_EQ(published().userDefinedInteractions.value().size(), 1U);
}

// Fails when a request of another tool, project or name is meant as well.
TEST_F(ScriptedRequestTest, WhatIsNotNamedIsFulfilled) {
  settings.libraryRequests.extractUdi = outcome(RequestKind::failed);
  settings.explorations["Trail Log"] = outcome(RequestKind::failed);
  start();
  EXPECT_EQ(finalResult(drop(deletion())).status, "deleted");
  EXPECT_EQ(finalResult(drop(exploration())).status, "authored");
}

TEST_F(ScriptedRequestTest, ARequestIsHeldOrWedgedUntilItIsCancelled) {
  settings.explorations["*"] = outcome(RequestKind::hold);
  settings.libraryRequests.deleteUdi = outcome(RequestKind::wedged);
  start();
  const auto held = drop(exploration());
  pass(1s);
  const auto wedged = drop(deletion());
  pass(1h);
  EXPECT_EQ(status(held), "authoring");
  EXPECT_LE(clock.date() - result(held).updatedAt, 16s);
  dropCancelMarker(held);
  pass(1h);
  EXPECT_EQ(status(held), "cancelled");
  EXPECT_EQ(status(wedged), "received");
  EXPECT_GT(clock.date() - result(wedged).updatedAt, 59min);
  dropCancelMarker(wedged);
  EXPECT_EQ(finalResult(wedged).status, "cancelled");
}

TEST_F(ScriptedRequestTest, ARequestMakesTheProgramHangOrCrash) {
  settings.explorations["*"] = outcome(RequestKind::hang);
  settings.libraryRequests.deleteUdi = outcome(RequestKind::crash);
  start();
  const auto hung = drop(exploration());
  pass(1h);
  EXPECT_GT(clock.date() - result(hung).updatedAt, 59min);
  start();
  const auto crashed = drop(deletion());
  bool lives = true;
  for (int tick = 0; lives && tick < 100; ++tick) {
    clock.advance(100ms);
    lives = standIn->tick();
  }
  EXPECT_FALSE(lives);
  EXPECT_EQ(status(crashed), "received");
}

TEST_F(ScriptedRequestTest, EveryRequestHasItsPickUpAndItsTornResult) {
  auto& explored = settings.explorations["Corner Shop"] = outcome(RequestKind::fulfilled);
  explored.pickUpSeconds = 5;
  explored.tornResult.emplace();
  settings.libraryRequests.deleteUdi = outcome(RequestKind::fulfilled);
  settings.libraryRequests.deleteUdi->pickUpSeconds = 1;
  settings.imports["*"] = outcome(RequestKind::failed);
  settings.imports["*"].pickUpSeconds = 1;
  start();
  const auto exploring = drop(exploration());
  const auto deleting = drop(deletion());
  const auto importing = dropPayload(payload("Order"));
  pass(800ms);
  for (const auto& id : {exploring, deleting, importing}) EXPECT_FALSE(fileExists(resultFile(id)));
  pass(2s);
  EXPECT_EQ(status(deleting), "deleted");
  EXPECT_EQ(status(importing), "importFailed");
  EXPECT_FALSE(fileExists(resultFile(exploring)));
  pass(1h);
  EXPECT_THROW((void)result(exploring), DecodeError);
}

TEST(StandInIds, ByNameAreTheSameForTheSameThing) {
  const Ids ids(IdSource::byName);
  const auto id = ids.make("test", "Shop", "Order");
  EXPECT_EQ(id, "cf67eabd-c59f-83e3-8bbc-75c930bee965");
  EXPECT_EQ(parseRequestId(id), id);
  EXPECT_EQ(ids.make("test", "Shop", "Order"), id);
  EXPECT_NE(ids.make("test", "Shop", "Orders"), id);
  EXPECT_NE(ids.make("test", "Other shop", "Order"), id);
  EXPECT_NE(ids.make("building block", "Shop", "Order"), id);
  EXPECT_NE(Ids(IdSource::random).make("test", "Shop", "Order"),
            Ids(IdSource::random).make("test", "Shop", "Order"));
}

TEST(FixedClock, StandsStillAndMeasuresWhatWasSlept) {
  const Date date = std::chrono::sys_days(std::chrono::year(2026) / 1 / 31);
  FixedClock clock(date);
  const Stopwatch stopwatch(clock);
  clock.sleep(2ms);
  clock.sleep(3ms);
  EXPECT_EQ(stopwatch.elapsed(), 5ms);
  EXPECT_EQ(clock.date(), date);
}

}  // namespace
}  // namespace corvane::testing
