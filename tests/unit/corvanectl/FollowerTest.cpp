#include "corvanectl/follow/Follower.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "PlayedRequest.h"

namespace corvane::testing {
namespace {

using namespace ctl;
using ::testing::ElementsAre;

/// Writes down what it is told, a line each with the seconds before it.
class Record final : public FollowObserver {
 public:
  void take(const FollowEvent& event, FollowTime now) override {
    const auto seconds = std::chrono::duration<double>(now.time_since_epoch()).count();
    lines.push_back(std::to_string(std::lround(seconds)) + " " + std::visit(Words(), event));
  }

  std::vector<std::string> lines;

 private:
  struct Words {
    std::string operator()(const events::Began& began) const {
      return (began.dispatched ? "dispatched " : "following ") + began.requestId;
    }
    std::string operator()(const events::PickedUp&) const { return "picked up"; }
    std::string operator()(const events::Planned& planned) const {
      return "planned " + std::to_string(planned.expectation.plan.tests.size());
    }
    std::string operator()(const events::StatusChanged& changed) const {
      std::string line = changed.status;
      if (changed.queuePosition) line += " #" + std::to_string(*changed.queuePosition);
      if (changed.message) line += " '" + *changed.message + "'";
      return line;
    }
    std::string operator()(const events::TestStarted& started) const {
      return "starts " + place(started.test);
    }
    std::string operator()(const events::StepStarted& started) const {
      const std::string test = started.test ? place(started.test.value()) + " " : "";
      return test + "step " + std::to_string(started.index) + "/" + std::to_string(started.count) +
             " " + started.description;
    }
    std::string operator()(const events::TestFinished& finished) const {
      return "finished " + place(finished.place) + " " + finished.test.status;
    }
    std::string operator()(const events::HealthChanged& changed) const {
      constexpr std::array words{"well", "app not running", "not picked up", "stale"};
      return words.at(static_cast<std::size_t>(changed.health));
    }
    std::string operator()(const events::Finished& finished) const {
      return "over " + finished.status;
    }
    std::string operator()(const events::LeftOff& left) const {
      return left.exitStatus ? "left off" : "interrupted";
    }
    static std::string place(const TestPlace& test) {
      return test.name + "[" + std::to_string(test.index) +
             (test.count ? "/" + std::to_string(*test.count) : "") + "]";
    }
  };
};

class FollowerTest : public ::testing::Test {
 protected:
  Follower::Outcome follow(Follower::Request given = {"ID"}) {
    return Follower(std::move(given), limits, request, record).run();
  }
  static std::string progress(int current, int total, const std::string& more = {}) {
    return R"("progress":{"currentStep":)" + std::to_string(current) + R"(,"totalSteps":)" +
           std::to_string(total) + R"(,"lastStepTitle":"TAP"})" + more;
  }
  static std::string test(const std::string& name, const std::string& status) {
    return R"({"testId":"1","testName":")" + name + R"(","status":")" + status +
           R"(","durationSeconds":2,"steps":[]})";
  }
  static std::string tests(const std::string& list) { return R"(,"tests":[)" + list + "]"; }

  const RunPlan plan{{{"Sign in", {"Open", "Type"}}, {"Pay", {"Tap", "Swipe", "Look"}}}};
  PlayedRequest request;
  Record record;
  Follower::Limits limits;
};

// Fails when a look waits as long as the server lets it.
TEST_F(FollowerTest, LooksInShortSlices) {
  request.result(0, "running");
  request.result(20.5, "passed");
  EXPECT_EQ(follow().end, Follower::End::finished);
  EXPECT_LE(*std::ranges::max_element(request.waits()), 5);
  EXPECT_DOUBLE_EQ(request.seconds(), 20.5);
}

TEST_F(FollowerTest, TellsTheCourseOfARun) {
  request.pending(0);
  request.result(2, "queued", R"("queuePosition":2)");
  request.result(4, "building", R"("message":"Building")");
  request.result(6, "running", progress(1, 5));
  request.result(8, "running", progress(3, 5, tests(test("Sign in", "passed"))));
  request.result(10, "running", progress(4, 5, tests(test("Sign in", "passed"))));
  request.result(12, "failed",
                 R"("tests":[)" + test("Sign in", "passed") + "," + test("Pay", "failed") + "]");
  request.known = Expectation{plan, {}};
  const auto outcome = follow({"ID", true});
  EXPECT_EQ(outcome.end, Follower::End::finished);
  EXPECT_EQ(outcome.look.status, "failed");
  EXPECT_THAT(
      record.lines,
      ElementsAre("0 dispatched ID", "1 pending", "2 picked up", "2 queued #2", "2 planned 2",
                  "4 building 'Building'", "6 running", "6 starts Sign in[0/2]",
                  "6 Sign in[0/2] step 0/2 Open", "8 finished Sign in[0/2] passed",
                  "8 starts Pay[1/2]", "8 Pay[1/2] step 0/3 Tap", "10 Pay[1/2] step 1/3 Swipe",
                  "12 finished Pay[1/2] failed", "12 over failed"));
}

// Fails when the live count, which begins with 1, is shown in the place of the step's number.
TEST_F(FollowerTest, CountsStepsLikeResultsDo) {
  request.result(0, "running", progress(5, 5));
  request.result(2, "passed");
  (void)follow();
  EXPECT_THAT(record.lines,
              ElementsAre("0 following ID", "1 running", "1 step 4/5 ", "2 over passed"));
}

// Fails when a plan is trusted that is not the one of the run.
TEST_F(FollowerTest, NamesNoStepOfAPlanWithOtherSteps) {
  request.result(0, "running", progress(2, 9));
  request.result(2, "passed");
  request.known = Expectation{plan, {}};
  (void)follow();
  EXPECT_THAT(record.lines, ElementsAre("0 following ID", "1 running", "1 planned 2", "1 step 1/9 ",
                                        "2 over passed"));
}

// Fails when a plan is asked for before the app has been up to publish it, or for ever.
TEST_F(FollowerTest, AsksAFewTimesForThePlan) {
  request.pending(0);
  request.result(3, "running", progress(1, 5));
  request.result(20, "passed");
  (void)follow({"ID", true});
  EXPECT_EQ(request.timesAsked, 3);
}

// Fails when a test that the result lists as running counts as finished.
TEST_F(FollowerTest, TakesTheNameOfTheTestInHandFromTheResult) {
  request.result(0, "running",
                 progress(2, 3, tests(test("Sign in", "passed") + "," + test("Pay", "running"))));
  request.result(2, "passed",
                 R"("tests":[)" + test("Sign in", "passed") + "," + test("Pay", "passed") + "]");
  (void)follow();
  EXPECT_THAT(
      record.lines,
      ElementsAre("0 following ID", "1 running", "1 finished Sign in[0] passed", "1 starts Pay[1]",
                  "1 Pay[1] step 1/3 ", "2 finished Pay[1/2] passed", "2 over passed"));
}

TEST_F(FollowerTest, TellsWithinFiveSecondsThatThereIsNoApp) {
  request.pending(0);
  request.app(0, false);
  const auto outcome = follow({"ID", true});
  EXPECT_EQ(outcome.end, Follower::End::noApp);
  EXPECT_EQ(outcome.health, Health::appNotRunning);
  EXPECT_THAT(record.lines, ElementsAre("0 dispatched ID", "1 pending", "1 app not running"));
  // A minute from when it was seen.
  EXPECT_NEAR(request.seconds(), 61, 1);
}

// Fails when an app that has just come is given no time to pick the request up.
TEST_F(FollowerTest, GoesOnWithAnAppThatComesLate) {
  request.pending(0);
  request.app(0, false);
  request.app(50, true);
  request.result(52, "running");
  request.result(130, "passed");
  EXPECT_EQ(follow({"ID", true}).end, Follower::End::finished);
  EXPECT_THAT(record.lines,
              ElementsAre("0 dispatched ID", "1 pending", "1 app not running", "52 picked up",
                          "52 running", "52 well", "130 over passed"));
}

TEST_F(FollowerTest, TellsOfALateAppThatLeavesTheRequestWhereItIs) {
  request.pending(0);
  request.app(0, false);
  request.app(30, true);
  EXPECT_EQ(follow({"ID", true}).end, Follower::End::noApp);
  EXPECT_EQ(record.lines.size(), 4U);
  EXPECT_EQ(record.lines.back(), "34 not picked up");
}

// Fails when the time without an app that was over counts for the next one.
TEST_F(FollowerTest, CountsTheTimeWithoutAnAppAnew) {
  const std::string dead =
      "status: running (NOT terminal — but Corvane.app is NOT running)\n"
      "appRunning: false\nsecondsSinceUpdate: 3\n\nThis run died with the "
      "app; it will not progress. run_test/create_test relaunch Corvane "
      "(which settles orphaned runs as 'error' at startup).\n\n" +
      PlayedRequest::json("running", progress(2, 5));
  request.result(0, "running", progress(1, 5));
  request.answer(10, dead);
  request.result(50, "running", progress(2, 5));
  request.answer(60, dead);
  limits.withoutApp = Seconds(45);
  EXPECT_EQ(follow().end, Follower::End::noApp);
  EXPECT_THAT(record.lines,
              ElementsAre("0 following ID", "1 running", "1 step 0/5 ", "10 step 1/5 ",
                          "10 app not running", "50 well", "60 app not running"));
  EXPECT_NEAR(request.seconds(), 105, 1);
}

TEST_F(FollowerTest, TellsOfAnAppThatHangs) {
  request.result(0, "running", progress(1, 5));
  request.answer(90,
                 "status: running (NOT terminal — STALE: no update in 91s despite Corvane "
                 "running; active envelopes heartbeat every ~20s. The run may be wedged — "
                 "consider cancel_run, or get_status for the live picture.)\n"
                 "appRunning: true\n\n" +
                     PlayedRequest::json("running", progress(1, 5)));
  const auto outcome = follow();
  EXPECT_EQ(outcome.end, Follower::End::noApp);
  EXPECT_EQ(outcome.health, Health::stale);
  EXPECT_EQ(record.lines.back(), "90 stale");
  EXPECT_NEAR(request.seconds(), 150, 1);
}

// Fails when the app is given no time at all to pick a request up.
TEST_F(FollowerTest, TellsOfAnAppThatLeavesTheRequestWhereItIs) {
  request.pending(0);
  request.app(0, true);
  EXPECT_EQ(follow({"ID", true}).end, Follower::End::noApp);
  EXPECT_THAT(record.lines, ElementsAre("0 dispatched ID", "1 pending", "5 not picked up"));
}

// Fails when the moment between the app's taking the request and its first result ends following.
TEST_F(FollowerTest, PassesOverTheMomentInWhichNothingIsKnownOfTheRequest) {
  request.answer(0, "error:unknown_request_id\n\nNo result for requestId ID.", true);
  request.result(2, "passed");
  EXPECT_EQ(follow({"ID", true}).end, Follower::End::finished);
}

TEST_F(FollowerTest, EndsWithARequestThatNobodyKnows) {
  request.answer(0, "error:unknown_request_id\n\nNo result for requestId ID.", true);
  EXPECT_EQ(follow({"ID", false}).end, Follower::End::refused);
  EXPECT_LT(request.seconds(), 2);
  EXPECT_EQ(follow({"ID", true}).end, Follower::End::refused);
  EXPECT_NEAR(request.seconds(), 7, 2);
}

TEST_F(FollowerTest, EndsWithTheTimeGiven) {
  request.result(0, "running");
  limits.end = FollowTime(std::chrono::milliseconds(4300));
  EXPECT_EQ(follow().end, Follower::End::timedOut);
  EXPECT_NEAR(request.seconds(), 4.3, 0.01);
}

// Fails when a result that is no record is taken for an error.
TEST_F(FollowerTest, FollowsAResultOfAnotherForm) {
  request.answer(0,
                 "status: dreaming (NOT terminal — run still in progress, call get_result "
                 "again)\nappRunning: true\n\n{}");
  request.answer(3, "status: passed (terminal)\n\n{\"odd\":1}");
  const auto outcome = follow();
  EXPECT_EQ(outcome.look.json, "{\"odd\":1}");
  EXPECT_THAT(record.lines, ElementsAre("0 following ID", "1 dreaming", "3 over passed"));
}

}  // namespace
}  // namespace corvane::testing
