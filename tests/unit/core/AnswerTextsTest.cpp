#include <gtest/gtest.h>

#include "CorvaneCore/results/AnswerTexts.h"

namespace corvane::testing {
namespace {

using AnswerTexts::Standing;

constexpr std::string_view id = "0a1b2c3d-0000-4000-8000-00000000abcd";

// Fails when two remarks change places.
TEST(AnswerTextsTest, EveryStandingHasItsWords) {
  const auto line = [](Standing standing) {
    return AnswerTexts::statusLine("running", standing, 120);
  };
  EXPECT_EQ(line(Standing::terminal), "status: running (terminal)");
  EXPECT_EQ(line(Standing::pending), "status: running (Corvane has not picked up the request yet)");
  EXPECT_EQ(line(Standing::inProgress),
            "status: running (NOT terminal — run still in progress, call get_result again)");
  EXPECT_EQ(line(Standing::stale),
            "status: running (NOT terminal — STALE: no update in 120s despite Corvane running; "
            "active envelopes heartbeat every ~20s. The run may be wedged — consider cancel_run, "
            "or get_status for the live picture.)");
  EXPECT_EQ(line(Standing::appNotRunning),
            "status: running (NOT terminal — but Corvane.app is NOT running)");
}

// Fails when a reader looks for the first bracket instead of the remark's own.
TEST(AnswerTextsTest, WhatIsWordedIsReadAgain) {
  for (const Standing standing : {Standing::terminal, Standing::pending, Standing::inProgress,
                                  Standing::stale, Standing::appNotRunning}) {
    for (const std::string_view status : {"running", "an odd (newer) status", ""}) {
      const std::string line = AnswerTexts::statusLine(status, standing, 4711);
      const auto read = AnswerTexts::readResultAnswer(line + "\nappRunning: true\n\n{}");
      ASSERT_TRUE(read);
      EXPECT_EQ(read->status, status);
      EXPECT_EQ(read->standing, standing) << line;
      EXPECT_EQ("status: " + read->headline, line);
    }
  }
}

// Fails when the result is cut at its own empty line, or begins with what the head says of the app.
TEST(AnswerTextsTest, TheResultStandsBehindTheHead) {
  const auto read = [](Standing standing, std::string_view head) {
    const std::string answer =
        AnswerTexts::statusLine("passed", standing).append(head) + "\n\n{\"a\":1}\n\n{\"b\":2}";
    return std::string(AnswerTexts::readResultAnswer(answer)->result);
  };
  const std::string_view result = "{\"a\":1}\n\n{\"b\":2}";
  EXPECT_EQ(read(Standing::terminal, ""), result);
  EXPECT_EQ(read(Standing::inProgress, "\nappRunning: true\nsecondsSinceUpdate: 1"), result);
  EXPECT_EQ(read(Standing::stale, "\nappRunning: true"), result);
  EXPECT_EQ(read(Standing::appNotRunning,
                 "\nappRunning: false\n\nThis run died with the app; it will not progress. "
                 "run_test/create_test relaunch Corvane (which settles orphaned runs as 'error' at "
                 "startup)."),
            result);
  EXPECT_EQ(read(Standing::pending, ""), "");
  EXPECT_EQ(AnswerTexts::readResultAnswer("status: passed (terminal)")->result, "");
}

TEST(AnswerTextsTest, ARemarkOfANewerServerIsShownAndNotUnderstood) {
  const auto read = AnswerTexts::readResultAnswer("status: running (asleep)\n\n{}");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->status, "running");
  EXPECT_EQ(read->standing, std::nullopt);
  EXPECT_EQ(read->headline, "running (asleep)");
  const auto bare = AnswerTexts::readResultAnswer("status: running");
  ASSERT_TRUE(bare);
  EXPECT_EQ(bare->status, "running");
  EXPECT_EQ(bare->standing, std::nullopt);
  EXPECT_FALSE(AnswerTexts::readResultAnswer("error:unknown_request_id\n\nstatus: passed"));
  EXPECT_FALSE(AnswerTexts::readResultAnswer(""));
}

// Fails when a remark may stand anywhere in the line.
TEST(AnswerTextsTest, ARemarkEndsItsLine) {
  const auto read = AnswerTexts::readResultAnswer("status: running (terminal) or not\n\n{}");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->standing, std::nullopt);
  EXPECT_FALSE(read->isTerminal());
}

// Fails when what stands where the seconds belong is not looked at.
TEST(AnswerTextsTest, TheAgeOfAStaleResultIsANumber) {
  std::string line = AnswerTexts::statusLine("running", Standing::stale, 91);
  line.replace(line.find("91"), 2, "many");
  EXPECT_EQ(AnswerTexts::readResultAnswer(line)->standing, std::nullopt);
}

// Fails when the column counts from the end of the label.
TEST(AnswerTextsTest, TheRequestIdStandsInItsColumnAndIsReadAgain) {
  EXPECT_EQ(AnswerTexts::requestIdLine(id, 13),
            "requestId:   0a1b2c3d-0000-4000-8000-00000000abcd");
  EXPECT_EQ(AnswerTexts::requestIdLine(id, 12), "requestId:  0a1b2c3d-0000-4000-8000-00000000abcd");
  for (const std::size_t column : {11U, 12U, 40U}) {
    const std::string answer = "Dispatched.\n\n  " + AnswerTexts::requestIdLine(id, column);
    EXPECT_EQ(AnswerTexts::readRequestId(answer + "\n  Project: Shop"), id);
    EXPECT_EQ(AnswerTexts::readRequestId(answer), id);
  }
  EXPECT_EQ(AnswerTexts::readRequestId("Dispatched."), std::nullopt);
  EXPECT_EQ(AnswerTexts::readRequestId("requestId: soon"), std::nullopt);
}

// Fails when a name that the request was given can say that the launch failed.
TEST(AnswerTextsTest, TheLaunchFailedWhereTheAnswerEndsWithThat) {
  const std::string failed = "\n  Corvane.app: /A.app  (LAUNCH FAILED — open Corvane manually)";
  const std::string next = "\n\nNext: call get_result {} and repeat.";
  EXPECT_TRUE(AnswerTexts::readLaunchFailed("Dispatched." + failed + next));
  EXPECT_TRUE(AnswerTexts::readLaunchFailed("Dispatched." + failed));
  EXPECT_FALSE(AnswerTexts::readLaunchFailed("Dispatched.\n  Corvane.app: /A.app" + next));
  EXPECT_FALSE(
      AnswerTexts::readLaunchFailed("  Project: x" + failed + "\n  Corvane.app: /A.app" + next));
}

// Fails when it is cut where a name has the same words.
TEST(AnswerTextsTest, WhatAnAgentDoesNextIsTheEnd) {
  EXPECT_EQ(AnswerTexts::withoutNextCall("A\n\nNext: call me\n\nNext: call get_result {}"),
            "A\n\nNext: call me");
  EXPECT_EQ(AnswerTexts::withoutNextCall("A"), "A");
}

TEST(AnswerTextsTest, TheAppStateIsReadAgain) {
  EXPECT_EQ(AnswerTexts::appStateLine(true), "Corvane status (appRunning: true).");
  EXPECT_EQ(AnswerTexts::appStateLine(false), "Corvane status (appRunning: false).");
  EXPECT_EQ(AnswerTexts::readAppState("Corvane status (appRunning: true).\n\n{}"), true);
  EXPECT_EQ(AnswerTexts::readAppState("Corvane status (appRunning: false).\n\n{}"), false);
  EXPECT_EQ(AnswerTexts::readAppState("Corvane status (appRunning: maybe).\n\n{}"), std::nullopt);
  EXPECT_EQ(AnswerTexts::snapshotIn("Corvane status (appRunning: false).\n\nnote: x\n\n{\"a\":1}"),
            "{\"a\":1}");
}

TEST(AnswerTextsTest, TheCaptionOfAStepIsReadAgain) {
  const std::string caption = AnswerTexts::stepCaption(12, "before, after");
  EXPECT_EQ(caption,
            "step 12 screenshots (before, after) — corner brackets mark where Corvane touched "
            "(drags also draw a line to the end point)");
  const auto read = AnswerTexts::readStepCaption(caption);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->step, 12);
  EXPECT_EQ(read->moments, (std::vector<std::string>{"before", "after"}));
  EXPECT_TRUE(AnswerTexts::readStepCaption(AnswerTexts::stepCaption(0, ""))->moments.empty());
  EXPECT_FALSE(AnswerTexts::readStepCaption("(no frames recorded for step 3)"));
  std::string odd = caption;
  EXPECT_FALSE(AnswerTexts::readStepCaption(odd.replace(5, 2, "1x")));
}

}  // namespace
}  // namespace corvane::testing
