#include "corvanectl/follow/LiveView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
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
      if (const auto action = test.atSecond.find(second); action != test.atSecond.end()) {
        action->second();
        test.atSecond.erase(action);
      }
    }

   private:
    LiveView& view;
    LiveViewTest& test;
  };

  /// Follows the request to its end or until the app has been away for a while.
  void follow() {
    LiveView view(console, ProgressPlace::withResults, Style(colored), request.now());
    Recorder recorder(view, *this);
    console.startProgress(ProgressPlace::withResults);
    (void)Follower({"ID", true}, {FollowTime::max(), Seconds(10)}, request, recorder).run();
    console.endProgress();
    frames[last] = look();
  }

  /// What stands on the terminal now.
  Frame look() {
    constexpr std::string_view mark = "\x01";
    EXPECT_EQ(::write(terminal.side(), mark.data(), mark.size()), 1);
    const std::string shown = terminal.readPast(mark);
    written += shown;
    screen.write(shown);
    return screen.rows();
  }

  void resize(unsigned short newColumns) {
    terminal.resize(newColumns);
    screen.resize(newColumns);
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
  /// All bytes that were written.
  std::string written;
  /// What happens to the terminal after a frame.
  std::map<std::int64_t, std::function<void()>> atSecond;
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
  request.known = Expectation{plan, {{"Sign in", 5}, {"Pay", 6}}};
  follow();
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

// Fails when a name or reason can draw, begin a line or end a sequence.
TEST_F(LiveViewTest, ShowsNamesAsTheyAreAndOnOneLine) {
  const std::string name = R"(<b>Sign\nin</b> 🎉\u001b[2J\u202e)";
  request.result(0, "running", progress(1, 5) + R"(,"tests":[)" + test(name, "running", 0) + "]");
  request.result(
      2, "failed",
      R"("tests":[)" +
          test(name, "failed", 1, step(0, "failed", R"(,"failureReason":"<i>a</i>\r\nb")")) + "]");
  follow();
  EXPECT_THAT(frames[1], ElementsAre(R"(<b>Sign in</b> 🎉\u001b[2J\u202e (1) · step 0/5 · 1 s)"));
  EXPECT_THAT(frames[last],
              ElementsAre(R"(✗ <b>Sign in</b> 🎉\u001b[2J\u202e  1 s  step 0: <i>a</i> b)"));
}

// Fails when the clock is what is cut off, or a long name takes the step's room.
TEST_F(LiveViewTest, CutsWhatIsLongestOnANarrowTerminal) {
  resize(34);
  request.known = Expectation{{{{"A test with quite a long name", {"Tap the button"}}}}, {}};
  request.result(0, "running", progress(1, 1));
  request.result(3, "running", progress(1, 1));
  request.result(5, "passed");
  follow();
  EXPECT_THAT(frames[1], ElementsAre("A test… (1/1) · step 0/1… · 1 s"));
}

TEST_F(LiveViewTest, ShowsWhatFitsOnATinyTerminal) {
  resize(9);
  request.result(0, "running", progress(2, 5));
  request.result(5, "passed");
  follow();
  EXPECT_THAT(frames[1], ElementsAre("step 1/5"));
}

// Fails when rows are left behind that the line took at the new width.
TEST_F(LiveViewTest, LeavesNothingBehindWhenTheWindowIsResized) {
  request.known = Expectation{plan, {}};
  request.result(0, "running", progress(1, 5));
  request.result(2, "running",
                 progress(4, 5) + R"(,"tests":[)" + test("Sign in", "passed", 2) + "]");
  request.result(8, "passed");
  atSecond[3] = [this] { resize(21); };
  atSecond[5] = [this] { resize(72); };
  follow();
  EXPECT_THAT(frames[2], ElementsAre("✓ Sign in  2 s", "Pay (2/2) · step 1/3 Swipe left · 2 s"));
  EXPECT_THAT(frames[4], ElementsAre("✓ Sign in  2 s", "Pay (2/2) · 4 s"));
  EXPECT_THAT(frames[6], ElementsAre("✓ Sign in  2 s", "Pay (2/2) · step 1/3 Swipe left · 6 s"));
  EXPECT_THAT(frames[last], ElementsAre("✓ Sign in  2 s"));
}

// Fails when a step far on is looked for again and again, or shown with another's words.
TEST_F(LiveViewTest, FindsItsWayInTenThousandSteps) {
  RunPlan::Test large{"Everything", {}};
  for (int i = 0; i < 10'000; ++i) large.steps.push_back("Tap " + std::to_string(i));
  std::string steps = step(0, "passed");
  for (int i = 1; i < 10'000; ++i) steps += "," + step(i, i == 9'999 ? "failed" : "passed");
  request.known = Expectation{{{large}}, {}};
  request.result(0, "running", progress(9'999, 10'000));
  request.result(3, "failed", R"("tests":[)" + test("Everything", "failed", 9, steps) + "]");
  follow();
  EXPECT_THAT(frames[1], ElementsAre("Everything (1/1) · step 9998/10000 Tap 9998 · 1 s"));
  EXPECT_THAT(frames[last], ElementsAre("✗ Everything  9 s  step 9999: TAP"));
}

// Fails when colours run on, or take columns of the line.
TEST_F(LiveViewTest, ColoursWhatIsWorthIt) {
  colored = true;
  request.result(0, "passed",
                 R"("tests":[)" + test("A", "passed", 1) + "," + test("B", "failed", 1) + "," +
                     test("C", "passed", 1, step(0, "healed")) + "]");
  follow();
  EXPECT_EQ(written,
            "\033[32m✓\033[m A  \033[2m1 s\033[m\r\n\033[31m✗\033[m B  \033[2m1 s\033[m\r\n"
            "\033[33m~\033[m C  \033[2m1 s\033[m  healed at step 0\r\n");
}

}  // namespace
}  // namespace corvane::testing
