#include "corvanectl/follow/EventLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <sstream>

#include "PlayedRequest.h"
#include "corvanectl/follow/Follower.h"
#include "corvanectl/follow/PlainLines.h"
#include "corvanectl/system/ChildProcess.h"

namespace corvane::testing {
namespace {

using namespace ctl;
using ::testing::ElementsAre;

/// What an observer writes into a pipe while it follows a request.
class FollowedLinesTest : public ::testing::Test {
 protected:
  std::vector<std::string> follow(FollowObserver& observer) {
    (void)Follower({"ID", true}, {}, request, observer).run();
    pipe.writeEnd.close();
    std::string text;
    std::array<char, 4096> chunk;
    ssize_t count = 0;
    while ((count = ::read(pipe.readEnd.get(), chunk.data(), chunk.size())) > 0) {
      text.append(chunk.data(), static_cast<std::size_t>(count));
    }
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }

  Pipe pipe = makePipe();
  Interruption interruption;
  Console console{interruption, pipe.writeEnd.get(), pipe.writeEnd.get()};
  PlayedRequest request;
};

constexpr const char* test =
    R"({"testId":"1","testName":"Sign\nin 🎉","status":"failed","durationSeconds":2,"steps":[)"
    R"({"index":0,"title":"TAP","description":"","status":"failed","failureReason":"<b>"}]})";

// Fails when a member has another name, or a line feed in a name ends the line.
TEST_F(FollowedLinesTest, EventsAreOneObjectALine) {
  request.known = Expectation{{{{"Sign\nin 🎉", {"Tap", "Look"}}}}, {}};
  request.pending(0);
  request.app(0, false);
  request.app(1.5, true);
  request.result(2, "queued", R"("queuePosition":1,"message":"Busy")");
  request.result(3, "running", R"("progress":{"currentStep":2,"totalSteps":2})");
  request.result(4, "failed", R"("tests":[)" + std::string(test) + "]");
  EventLines lines(console, request.now());
  const std::string place = R"("testCount":1,"testIndex":0,"testName":"Sign\nin 🎉")";
  EXPECT_THAT(
      follow(lines),
      ElementsAre(
          R"({"event":"dispatched","requestId":"ID","seconds":0})",
          R"({"event":"status","seconds":1,"status":"pending"})",
          R"({"event":"health","health":"appNotRunning","seconds":1})",
          R"({"event":"pickedUp","seconds":2})",
          R"({"event":"status","message":"Busy","queuePosition":1,"seconds":2,"status":"queued"})",
          R"({"event":"planned","seconds":2,"tests":["Sign\nin 🎉"]})",
          R"({"event":"health","health":"well","seconds":2})",
          R"({"event":"status","seconds":3,"status":"running"})",
          R"({"event":"testStarted","seconds":3,)" + place + "}",
          R"({"description":"Look","event":"step","seconds":3,"stepCount":2,"stepIndex":1,)" +
              place + "}",
          R"({"event":"testFinished","seconds":4,"test":{"durationSeconds":2,"status":"failed",)"
          R"("steps":[{"description":"","failureReason":"<b>","healedByAI":false,"index":0,)"
          R"("status":"failed","title":"TAP"}],"testId":"1","testName":"Sign\nin 🎉"},)" +
              place + "}",
          R"({"event":"finished","exitStatus":1,"result":{"requestId":"ID","schemaVersion":3,)"
          R"("source":"run_test","status":"failed","terminal":true,"tests":[{"durationSeconds":2,)"
          R"("status":"failed","steps":[{"description":"","failureReason":"<b>","index":0,)"
          R"("status":"failed","title":"TAP"}],"testId":"1","testName":"Sign\nin 🎉"}],)"
          R"("updatedAt":"2026-01-31T12:00:00Z"},"seconds":4,"status":"failed"})"));
}

TEST_F(FollowedLinesTest, EventsEndWhereFollowingIsLeft) {
  EventLines lines(console, request.now());
  lines.take(events::LeftOff{ExitStatus::noApp}, request.now());
  lines.take(events::LeftOff{}, request.now());
  lines.take(events::Finished{"odd", "no JSON"}, request.now());
  request.result(0, "passed");
  const auto written = follow(lines);
  ASSERT_GE(written.size(), 3U);
  EXPECT_EQ(written[0], R"({"event":"leftOff","exitStatus":5,"seconds":0})");
  EXPECT_EQ(written[1], R"({"event":"leftOff","seconds":0})");
  EXPECT_EQ(written[2],
            R"({"event":"finished","exitStatus":3,"result":"no JSON","seconds":0,"status":"odd"})");
}

// Fails when a name can begin a line of its own, or draw.
TEST_F(FollowedLinesTest, PlainLinesShowForeignTextOnOneLine) {
  request.known = Expectation{{{{"Sign\nin 🎉", {"Tap\033[2J", "Look"}}}}, {}};
  request.result(0, "running", R"("progress":{"currentStep":1,"totalSteps":2})");
  request.result(4, "failed", R"("tests":[)" + std::string(test) + "]");
  PlainLines lines(console, ProgressPlace::withResults, PlainLines::Extent::everything);
  EXPECT_THAT(follow(lines), ElementsAre("running", R"(Sign in 🎉 (1/1), step 0/2 Tap\u001b[2J)",
                                         "  failed  Sign in 🎉  (1 step, 2 s)",
                                         "    step 0 failed: TAP", "      <b>"));
}

}  // namespace
}  // namespace corvane::testing
