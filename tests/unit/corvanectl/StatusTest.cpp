#include <gtest/gtest.h>
#include <signal.h>

#include "FakeServerScript.h"
#include "ProgramRun.h"

namespace corvane::testing {
namespace {

std::string statusText(std::string_view json) {
  return textResult("Corvane status (appRunning: true).\n\n" + std::string(json));
}

const std::string atWork =
    R"({"activity":{"active":{"kind":"run\u001b[1m","requestId":"r1",)"
    R"("startedAt":"2026-01-31T12:00:00Z"},"queued":[{"kind":"run","position":1,"requestId":"r2"}],)"
    R"("schedulerBusy":true,"device":{"platform":"iOS","name":"iPhone 17","connected":false}},)"
    R"("activitySecondsSinceUpdate":3,"appRunning":true,"recentRequests":[]})";
const std::string idle =
    R"({"activity":{"active":null},"activitySecondsSinceUpdate":100,"appRunning":true,)"
    R"("recentRequests":[]})";

// Fails when foreign text reaches the terminal as it is.
TEST(Status, TellsWhatTheAppIsDoing) {
  const FakeServerScript script(greeted({"expect tools/call", statusText(atWork)}));
  const auto run = runWithFakeServer({"status"});
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(run.output.starts_with("Corvane.app is running.\nAt work: run\\u001b[1m r1, for "))
      << run.output;
  EXPECT_TRUE(run.output.ends_with(
      "\nIn the queue: 1\n"
      "A run that no request asked for is going on; requests wait for its end.\n"
      "Device: iPhone 17, iOS (not connected)\n\n"
      "REQUEST  STATUS  FROM          PROJECT  CHANGED\n"
      "r2       queued  run\n"
      "r1       active  run\\u001b[1m\n"))
      << run.output;
}

// Fails when a heartbeat of 90 seconds ago is silence, or one of 91 is not.
TEST(Status, TellsOfSilence) {
  for (const auto& [age, silent] : {std::pair("90", false), std::pair("91", true)}) {
    const FakeServerScript script(
        greeted({"expect tools/call",
                 statusText(std::string(R"({"activity":{},"activitySecondsSinceUpdate":)") + age +
                            R"(,"appRunning":true})")}));
    EXPECT_EQ(
        runWithFakeServer({"status"}).output.find("has not been heard of") != std::string::npos,
        silent)
        << age;
  }
}

// Fails when a watch prints below what it printed before, or does not end by the signal.
TEST(Status, IsDrawnOverOnATerminal) {
  const FakeServerScript script(greeted(
      {"expect tools/call", statusText(atWork), "expect tools/call", statusText(idle), "hang"}));
  Pseudoterminal terminal(40);
  const int program =
      terminal.start({"--server", FakeServerScript::program(), "status", "--watch"});
  const std::string shown = terminal.readUntil("At work: nothing");
  // Each line keeps to the terminal's width, so that the cursor finds the first of them again.
  EXPECT_NE(shown.find("A run that no request asked for is goi…\r\n"), std::string::npos) << shown;
  EXPECT_NE(
      shown.find("r1       active  run\\u001b[1m\r\n\033[9A\r\033[JCorvane.app is running, but"),
      std::string::npos)
      << shown;
  terminal.type("\003");
  EXPECT_EQ(waitForStatus(program), 128 + SIGINT);
}

// Fails when a pipe gets the same again, or an escape.
TEST(Status, TellsOnlyNewsInAPipe) {
  const FakeServerScript script(
      greeted({"expect tools/call", statusText(idle), "expect tools/call", statusText(idle),
               "expect tools/call", statusText(atWork), "expect tools/call", "exit 0"}));
  const auto run = runWithFakeServer({"status", "--watch"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.output.find('\033'), std::string::npos);
  const std::size_t second = run.output.find("\n\nCorvane.app is running.\n");
  EXPECT_NE(second, std::string::npos) << run.output;
  EXPECT_EQ(run.output.find("At work: nothing"), run.output.rfind("At work: nothing"));
}

}  // namespace
}  // namespace corvane::testing
