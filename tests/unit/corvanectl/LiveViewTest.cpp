#include "corvanectl/follow/LiveView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <map>

#include "PlayedRequest.h"
#include "ProgramRun.h"
#include "Screen.h"
#include "corvanectl/follow/Follower.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::testing {
namespace {

using namespace ctl;
using ::testing::ElementsAre;
using Frame = std::vector<std::string>;

/// A live view on a terminal, and what stands there at each second.
class LiveViewTest : public ::testing::Test {
 protected:
  /// Passes on what it is told, and looks at the terminal as the seconds go by.
  class Recorder final : public FollowObserver {
   public:
    Recorder(LiveView& view, LiveViewTest& test) : view(view), test(test) {}
    void take(const FollowEvent& event, FollowTime now) override { view.take(event, now); }
    void tick(FollowTime now) override {
      view.tick(now);
      const auto second = std::chrono::round<std::chrono::seconds>(now.time_since_epoch()).count();
      test.frames[second] = test.look();
    }

   private:
    LiveView& view;
    LiveViewTest& test;
  };

  /// Follows the request to its end or until the app has been away for a while.
  void follow(std::optional<LiveView::Expectation> expectation = std::nullopt) {
    LiveView view(console, ProgressPlace::withResults, Style(colored), request.now(), expectation);
    Recorder recorder(view, *this);
    console.startProgress(ProgressPlace::withResults);
    Follower::Request given{"ID", true, "Shop"};
    if (expectation) given.plan = expectation->plan;
    (void)Follower(given, {FollowTime::max(), Seconds(10)}, request, recorder).run();
    console.endProgress();
    frames[last] = look();
  }

  /// What stands on the terminal now.
  Frame look() {
    constexpr std::string_view mark = "\x01";
    EXPECT_EQ(::write(terminal.side(), mark.data(), mark.size()), 1);
    screen.write(terminal.readPast(mark));
    return screen.rows();
  }

  static std::string test(const std::string& name, const std::string& status, double seconds,
                          const std::string& steps = {}) {
    return R"({"testId":"1","testName":")" + name + R"(","status":")" + status +
           R"(","durationSeconds":)" + std::to_string(seconds) + R"(,"steps":[)" + steps + "]}";
  }
  static std::string step(int index, const std::string& status, const std::string& more = {}) {
    return R"({"index":)" + std::to_string(index) +
           R"(,"title":"TAP","description":"Tap","status":")" + status + "\"" + more + "}";
  }
  static std::string progress(int current, int total) {
    return R"("progress":{"currentStep":)" + std::to_string(current) + R"(,"totalSteps":)" +
           std::to_string(total) + R"(,"lastStepTitle":"TAP"})";
  }

  static constexpr std::int64_t last = -1;
  static constexpr unsigned short columns = 72;
  const RunPlan plan{{{"Sign in", {"Open the app", "Type the name"}},
                      {"Pay", {"Tap \"Pay\"", "Swipe left", "Look at the total"}}}};

  Pseudoterminal terminal{columns};
  Interruption interruption;
  Console console{interruption, terminal.side(), terminal.side()};
  PlayedRequest request;
  Screen screen{columns};
  bool colored = false;
  std::map<std::int64_t, Frame> frames;
};

// Fails when what is left is counted from the whole run, or the elapsed time from the test.
TEST_F(LiveViewTest, ShowsAPassingRun) {
  request.pending(0);
  request.result(2, "building", R"("message":"Building the app")");
  request.result(4, "running", progress(1, 5));
  request.result(8, "running",
                 progress(3, 5) + R"(,"tests":[)" + test("Sign in", "passed", 4.2) + "]");
  request.result(9, "running",
                 progress(4, 5) + R"(,"tests":[)" + test("Sign in", "passed", 4.2) + "]");
  request.result(
      12, "passed",
      R"("tests":[)" + test("Sign in", "passed", 4.2) + "," + test("Pay", "passed", 3) + "]");
  follow(LiveView::Expectation{plan, {{"Sign in", 5}, {"Pay", 6}}});
  EXPECT_THAT(frames[1], ElementsAre("waiting for Corvane.app to pick the request up · 1 s"));
  EXPECT_THAT(frames[2], ElementsAre("building — Building the app · 2 s"));
  EXPECT_THAT(frames[4],
              ElementsAre("Sign in (1/2) · step 0/2 Open the app · 4 s, about 11 s left"));
  EXPECT_THAT(frames[6],
              ElementsAre("Sign in (1/2) · step 0/2 Open the app · 6 s, about 9 s left"));
  EXPECT_THAT(frames[8], ElementsAre("✓ Sign in  4.2 s",
                                     "Pay (2/2) · step 0/3 Tap \"Pay\" · 8 s, about 6 s left"));
  EXPECT_THAT(frames[9], ElementsAre("✓ Sign in  4.2 s",
                                     "Pay (2/2) · step 1/3 Swipe left · 9 s, about 5 s left"));
  EXPECT_THAT(frames[last], ElementsAre("✓ Sign in  4.2 s", "✓ Pay  3 s"));
}

TEST_F(LiveViewTest, ShowsAFailingRun) {
  request.result(0, "running", progress(1, 5));
  request.result(3, "failed",
                 R"("tests":[)" +
                     test("Sign in", "failed", 2,
                          step(0, "passed") + "," +
                              step(1, "failed", R"(,"failureReason":"No \"OK\"\nto tap")")) +
                     "," + test("Pay", "failed", 3, step(2, "failed")) + "]");
  follow();
  EXPECT_THAT(frames[1], ElementsAre("step 0/5 · 1 s"));
  EXPECT_THAT(frames[last],
              ElementsAre("✗ Sign in  2 s  step 1: No \"OK\" to tap", "✗ Pay  3 s  step 2: TAP"));
}

TEST_F(LiveViewTest, ShowsAHealedRun) {
  request.result(0, "running");
  request.result(2, "passed",
                 R"("tests":[)" + test("Sign in", "passed", 2, step(3, "healed")) + "," +
                     test("Pay", "warning", 2, step(1, "warning", R"(,"failureReason":"Odd")")) +
                     "]");
  follow();
  EXPECT_THAT(frames[last],
              ElementsAre("~ Sign in  2 s  healed at step 3", "! Pay  2 s  warning  step 1: Odd"));
}

TEST_F(LiveViewTest, ShowsAQueuedRun) {
  request.result(0, "queued", R"("queuePosition":2)");
  request.result(65, "queued", R"("queuePosition":1)");
  request.result(70, "passed");
  follow();
  EXPECT_THAT(frames[1], ElementsAre("queued — position 2 · 1 s"));
  EXPECT_THAT(frames[62], ElementsAre("queued — position 2 · 1 min 2 s"));
  EXPECT_THAT(frames[65], ElementsAre("queued — position 1 · 1 min 5 s"));
  EXPECT_THAT(frames[last], ElementsAre());
}

TEST_F(LiveViewTest, ShowsAStaleRun) {
  request.result(0, "running", progress(2, 5));
  request.answer(3,
                 "status: running (NOT terminal — STALE: no update in 91s despite Corvane "
                 "running; active envelopes heartbeat every ~20s. The run may be wedged — "
                 "consider cancel_run, or get_status for the live picture.)\n"
                 "appRunning: true\n\n" +
                     PlayedRequest::json("running", progress(2, 5)));
  follow();
  const std::vector<std::string> words{
      "Corvane.app runs but the request has not moved for over a minute. Look a",
      "t the app, or cancel the request with 'corvanectl cancel ID'."};
  EXPECT_THAT(frames[2], ElementsAre("step 1/5 · 2 s"));
  EXPECT_THAT(frames[3], ElementsAre(words[0], words[1], "step 1/5 · 3 s"));
  EXPECT_THAT(frames[last], ElementsAre(words[0], words[1]));
}

TEST_F(LiveViewTest, ShowsACancelledRun) {
  request.result(0, "running", progress(1, 5));
  request.result(2, "cancelled",
                 R"("tests":[)" + test("Sign in", "cancelled", 1, step(0, "skipped")) + "]");
  follow();
  EXPECT_THAT(frames[last], ElementsAre("– Sign in  1 s  cancelled"));
}

}  // namespace
}  // namespace corvane::testing
