#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"
#include "FakeServerScript.h"
#include "ProgramRun.h"

namespace corvane::testing {
namespace {

/// An answer of get_result about a request that goes on; `members` follow the required ones.
std::string goesOn(const std::string& status, const std::string& members = {}) {
  return textResult(
      "status: " + status +
      " (NOT terminal — run still in progress, call get_result again)\nappRunning: true\n"
      "secondsSinceUpdate: 1\n\n" +
      R"({"schemaVersion":3,"requestId":"r","source":"run_test","status":")" + status +
      R"(","terminal":false,"updatedAt":"2026-01-31T12:00:00Z")" + members + "}");
}

const std::string running = goesOn("running");

/// What is said on standard error of a request that is left.
std::string waysOn(const std::string& id, const std::string& becomes = "goes on") {
  return "corvanectl: the request " + becomes + "; follow it with 'corvanectl follow " + id +
         "' or cancel it with 'corvanectl cancel " + id + "'\n";
}

const std::string passedJson =
    R"({"schemaVersion":3,"requestId":"r","source":"run_test","status":"passed","terminal":true,)"
    R"("updatedAt":"2026-01-31T12:00:00Z","projectName":"Shop"})";

std::vector<std::string> joined(std::vector<std::string> first,
                                const std::vector<std::string>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// The params of the calls that the server got, in order.
std::vector<AnyCodable> calls(const FakeServerScript& script) {
  std::vector<AnyCodable> params;
  for (const auto& line : script.received()) {
    const AnyCodable message = readJson(line);
    if (*message.find("method") == AnyCodable("tools/call"))
      params.push_back(*message.find("params"));
  }
  return params;
}

TEST(Follow, TellsEachThingOnceAndThenTheSummary) {
  const std::string first =
      R"({"testId":"1","testName":"Login","status":"passed","durationSeconds":2,"steps":[]})";
  const std::string second =
      R"({"testId":"2","testName":"Pay","status":"passed","durationSeconds":3,"steps":[]})";
  const std::string firstStep = R"(,"progress":{"currentStep":1,"totalSteps":2})";
  const std::string secondStep = R"(,"progress":{"currentStep":2,"totalSteps":2},"tests":[)";
  const FakeServerScript script(greeted(joined(
      {"expect tools/call", goesOn("queued", R"(,"queuePosition":2)"), "expect tools/call",
       goesOn("queued", R"(,"queuePosition":2)"), "expect tools/call", goesOn("running", firstStep),
       "expect tools/call", goesOn("running", secondStep + first + "]")},
      finishedResult("passed", passedJson.substr(0, passedJson.size() - 1) + R"(,"tests":[)" +
                                   first + "," + second + "]}"))));
  const auto run = runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd"});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_EQ(run.output,
            "queued — position 2\nrunning\nstep 0/2\n  passed  Login  (0 steps, 2 s)\n"
            "test (2), step 1/2\n  passed  Pay  (0 steps, 3 s)\npassed: Shop\n");
  ASSERT_EQ(calls(script).size(), 5U);
  EXPECT_EQ(
      calls(script).front(),
      readJson(
          R"({"name":"get_result","arguments":{"requestId":"0a1b2c3d-0000-4000-8000-00000000abcd","waitSeconds":1}})"));
}

TEST(Follow, TellsWhatIsWrongWithARunUntilItIsOver) {
  const std::string orphaned =
      textResult("status: running (NOT terminal — but Corvane.app is NOT running)\n\n{}");
  const FakeServerScript script(greeted(joined(
      {"expect tools/call", orphaned, "expect tools/call", orphaned, "expect tools/call", running},
      finishedResult("passed", passedJson))));
  EXPECT_EQ(runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd"}).output,
            "running\nCorvane.app is not running, so the request does not move. Open the app, or "
            "withdraw the request with 'corvanectl cancel 0a1b2c3d-0000-4000-8000-00000000abcd'.\n"
            "Corvane.app is at work on the request.\npassed: Shop\n");
}

// Fails when somebody who reads JSON is not told that it goes nowhere.
TEST(Follow, TellsWhatIsWrongBesideTheJson) {
  const FakeServerScript script(greeted(
      joined({"expect tools/call",
              textResult("status: running (NOT terminal — but Corvane.app is NOT running)\n\n{}")},
             finishedResult("passed", passedJson))));
  const auto run = runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd", "--json"});
  EXPECT_EQ(run.output, passedJson + "\n");
  EXPECT_EQ(run.errors,
            "Corvane.app is not running, so the request does not move. Open the app, or withdraw "
            "the request with 'corvanectl cancel 0a1b2c3d-0000-4000-8000-00000000abcd'.\n");
}

TEST(Follow, EndsWhereNoAppWorksOnTheRequest) {
  std::vector<std::string> polls;
  for (int i = 0; i < 6; ++i) {
    polls.emplace_back("expect tools/call");
    polls.push_back(
        textResult("status: running (NOT terminal — but Corvane.app is NOT running)\n\n{}"));
  }
  const FakeServerScript script(greeted(polls));
  const auto run =
      runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd", "--app-timeout", "1"});
  EXPECT_EQ(run.status, 5);
  EXPECT_EQ(run.errors,
            "corvanectl: no Corvane.app has been running for 1 s\n" +
                waysOn("0a1b2c3d-0000-4000-8000-00000000abcd",
                       "does not go on; the app ends it as an error when it is opened"));
}

TEST(Follow, EndsAsTheRequestEnded) {
  const std::vector<std::pair<std::string, int>> endings{
      {"passed", 0}, {"imported", 0}, {"failed", 1}, {"buildFailed", 1}, {"blocked", 3}};
  for (const auto& [status, exitStatus] : endings) {
    const FakeServerScript script(greeted(finishedResult(status, "{}")));
    EXPECT_EQ(runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd"}).status,
              exitStatus)
        << status;
  }
}

TEST(Follow, PrintsOnlyTheResultAsJson) {
  const FakeServerScript script(
      greeted(joined({"expect tools/call", running}, finishedResult("passed", passedJson))));
  const auto run = runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd", "--json"});
  EXPECT_EQ(run.output, passedJson + "\n");
  EXPECT_EQ(run.errors, "");
}

// Fails when a person is told what the tool tells an agent.
TEST(Follow, TellsOfARequestThatNobodyKnows) {
  const FakeServerScript script(greeted(
      {"expect tools/call",
       textResult("error:unknown_request_id\n\nNo result. Update if get_result fails.", true)}));
  const auto run = runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors,
            "corvanectl: nobody knows the request 0a1b2c3d-0000-4000-8000-00000000abcd: the id is "
            "wrong, or its result has been "
            "removed (results are kept for about 7 days)\n");
}

TEST(Follow, TellsOfAResultThatCannotBeRead) {
  const FakeServerScript script(greeted(
      {"expect tools/call", textResult("error:result_unreadable\n\nNot parsed: /a/b.json", true)}));
  const auto run = runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, "corvanectl: Not parsed: /a/b.json\n");
}

TEST(Follow, GivesUpWhenTheTimeHasRunOut) {
  // More polls than there is time for.
  std::vector<std::string> polls;
  for (int i = 0; i < 8; ++i) {
    polls.emplace_back("expect tools/call");
    polls.push_back(running);
  }
  const FakeServerScript script(greeted(polls));
  const auto run =
      runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd", "--timeout", "2"});
  EXPECT_EQ(run.status, 4);
  EXPECT_EQ(run.errors,
            "corvanectl: the request has not finished in the time given; its status is running\n" +
                waysOn("0a1b2c3d-0000-4000-8000-00000000abcd"));
}

TEST(Follow, GivesUpOnAServerThatDoesNotAnswerInTime) {
  const FakeServerScript script(greeted({"expect tools/call", "hang"}));
  const auto run =
      runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd", "--timeout", "2"});
  EXPECT_EQ(run.status, 4);
  // Two seconds beyond the user's time, of which starting the server has taken its part.
  const std::string lead = waysOn("0a1b2c3d-0000-4000-8000-00000000abcd") +
                           "corvanectl: the server did not answer tools/call within ";
  ASSERT_TRUE(run.errors.starts_with(lead) && run.errors.ends_with(" s\n")) << run.errors;
  const double seconds = std::stod(run.errors.substr(lead.size()));
  EXPECT_TRUE(seconds > 2 && seconds <= 4) << seconds;
  EXPECT_TRUE(script.serverIsGone());
}

// Fails when names in the server's answer reach the terminal as they are.
TEST(Run, ShowsTheAnswerWithoutControls) {
  const FakeServerScript script(
      greeted({"expect tools/call", textResult("Dispatched Sh\x1B[31mop\nto the app.", true)}));
  EXPECT_EQ(runWithFakeServer({"run", "Shop", "--all", "--unchecked"}).output,
            "Dispatched Sh\\u001b[31mop\nto the app.\n");
}

TEST(Follow, CountsAServerThatDiesAsProtocolTrouble) {
  const FakeServerScript script(greeted({"expect tools/call", "crash"}));
  EXPECT_EQ(runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd"}).status, 2);
}

TEST(Follow, CountsAnAnswerWithoutStatusAsProtocolTrouble) {
  const FakeServerScript script(greeted({"expect tools/call", textResult("all is well")}));
  EXPECT_EQ(runWithFakeServer({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd"}).status, 2);
}

TEST(Follow, SavesThePicturesOfAStep) {
  const std::string answer = R"({"type":"text","text":"status: passed (terminal)\n\n{}"})";
  const std::string advice = R"({"type":"text","text":"advice"})";
  const FakeServerScript script(
      greeted({"expect tools/call",
               "result {\"content\":[" + answer + "," + advice + "],\"isError\":false}",
               "expect tools/call",
               "result {\"content\":[" + answer + "," + advice +
                   R"(,{"type":"text","text":"step 3 screenshots (before, after) — corner )"
                   R"(brackets mark where Corvane touched (drags also draw a line to the end )"
                   R"x(point)"},{"type":"image","data":"Zm9v","mimeType":"image/jpeg"},)x"
                   R"({"type":"image","data":"YmFy","mimeType":"image/jpeg"}],"isError":false})"}));
  const TemporaryDirectory directory;
  const auto run = runWithFakeServer(
      {"follow", "0a1b2c3d-0000-4000-8000-00000000abcd", "--pictures", directory.path()});
  EXPECT_EQ(run.output,
            "passed\n{}\nstep 3 screenshots (before, after) — corner brackets mark "
            "where Corvane touched (drags also draw a line to the end point)\n" +
                (directory.path() / "get_result-step-3-before.jpg").string() + "\n" +
                (directory.path() / "get_result-step-3-after.jpg").string() + "\n");
  EXPECT_EQ(readFile(directory.path() / "get_result-step-3-before.jpg"), "foo");
  EXPECT_EQ(readFile(directory.path() / "get_result-step-3-after.jpg"), "bar");
  EXPECT_EQ(
      calls(script).back(),
      readJson(
          R"({"name":"get_result","arguments":{"includeStepTrace":true,"requestId":"0a1b2c3d-0000-4000-8000-00000000abcd"}})"));
}

// Fails when the lines about the pictures stand among the JSON.
TEST(Follow, TellsOfPicturesBesideTheJson) {
  const std::string answer = R"({"type":"text","text":"status: passed (terminal)\n\n{}"})";
  const FakeServerScript script(
      greeted({"expect tools/call", "result {\"content\":[" + answer + "]}", "expect tools/call",
               "result {\"content\":[" + answer +
                   R"(,{"type":"image","data":"Zm9v","mimeType":"image/jpeg"}]})"}));
  const TemporaryDirectory directory;
  const auto run = runWithFakeServer(
      {"follow", "0a1b2c3d-0000-4000-8000-00000000abcd", "--json", "--pictures", directory.path()});
  EXPECT_EQ(run.output, "{}\n");
  EXPECT_EQ(run.errors, (directory.path() / "get_result-1.jpg").string() + "\n");
}

const std::string dispatched =
    "Run request dispatched to Corvane.\n\n  requestId:   0f8fad5b-d9cb-469f-a165-70867728950e\n"
    "  Project:     Shop";

const std::vector<std::string> dispatch{"expect tools/call", textResult(dispatched)};

TEST(RunAndFollow, FollowsWhatWasDispatched) {
  const FakeServerScript script(greeted(joined(dispatch, finishedResult("failed", passedJson))));
  const auto run = runWithFakeServer({"run", "Shop", "--all", "--follow"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, dispatched + "\n\npassed: Shop\n");
  EXPECT_EQ(*calls(script).back().find("arguments")->find("requestId"),
            AnyCodable("0f8fad5b-d9cb-469f-a165-70867728950e"));
}

/// How often a request is looked at in 1.6 seconds, most of which the server needs to start.
std::ptrdiff_t looksAfterASlowStart(std::vector<std::string> arguments,
                                    std::vector<std::string> lines) {
  for (int i = 0; i < 8; ++i) {
    lines.emplace_back("expect tools/call");
    lines.push_back(running);
  }
  lines = greeted(std::move(lines));
  lines.insert(lines.begin() + 1, "delay 1500");
  const FakeServerScript script(lines);
  arguments.insert(arguments.end(), {"--timeout", "1.6"});
  EXPECT_EQ(runWithFakeServer(arguments).status, 4);
  const auto made = calls(script);
  return std::ranges::count(made, AnyCodable("get_result"),
                            [](const auto& call) { return *call.find("name"); });
}

// Fails when the time is counted from after the server's start: then there is some for three looks.
TEST(RunAndFollow, CountTheServersStartAsTimeGone) {
  EXPECT_LE(looksAfterASlowStart({"run", "Shop", "--all", "--follow"}, dispatch), 2);
  EXPECT_LE(looksAfterASlowStart({"follow", "0a1b2c3d-0000-4000-8000-00000000abcd"}, {}), 2);
}

// Fails when the id is known only at the end.
TEST(RunAndFollow, PrintsOnlyTheFinalResultAsJson) {
  const FakeServerScript script(greeted(joined(dispatch, finishedResult("passed", passedJson))));
  const auto run = runWithFakeServer({"run", "Shop", "--all", "--follow", "--json"});
  EXPECT_EQ(run.output, passedJson + "\n");
  EXPECT_EQ(run.errors, "requestId: 0f8fad5b-d9cb-469f-a165-70867728950e\n");
}

TEST(RunAndFollow, FollowsNothingThatWasNotDispatched) {
  {
    const FakeServerScript script(greeted({"expect tools/call", textResult("error:y", true)}));
    const auto run = runWithFakeServer({"run", "Shop", "--all", "--follow"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "error:y\n");
  }
  const FakeServerScript script(greeted({"expect tools/call", textResult("done")}));
  EXPECT_EQ(runWithFakeServer({"run", "Shop", "--all", "--follow"}).status, 2);
}

// Fails when a folder that cannot be written is found out after the run.
TEST(RunAndFollow, ChecksTheFolderBeforeItDispatches) {
  const TemporaryDirectory directory;
  writeFileWhole(directory.path() / "file", "");
  const FakeServerScript script(greeted(dispatch));
  const auto run = runWithFakeServer(
      {"run", "Shop", "--all", "--follow", "--pictures", directory.path() / "file" / "shots"});
  EXPECT_EQ(run.status, 74);
  EXPECT_NE(run.errors.find("--pictures"), std::string::npos) << run.errors;
  EXPECT_TRUE(calls(script).empty());
}

// Fails when a reader that has gone keeps the request from being cancelled.
TEST(Follow, CancelsAlthoughNobodyReads) {
  const FakeServerScript script(
      greeted({"expect tools/call", running, "expect tools/call", goesOn("building"),
               "expect tools/call", textResult("cancelled")}));
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  ::close(ends[0]);
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(ends[1], STDOUT_FILENO);
    ::close(STDERR_FILENO);
    becomeCorvanectl({"--server", FakeServerScript::program(), "follow",
                      "0a1b2c3d-0000-4000-8000-00000000abcd", "--events", "--cancel-on-exit"});
  }
  ::close(ends[1]);
  EXPECT_EQ(waitForStatus(child), 128 + SIGPIPE);
  EXPECT_EQ(*calls(script).back().find("name"), AnyCodable("cancel_run"));
}

TEST(RunAndFollow, LeavesOutWhatIsForAgents) {
  const std::string forAgents =
      "\n\nNext: call get_result {\"requestId\":\"x\",\"waitSeconds\":120} and repeat until the "
      "status is terminal.";
  const FakeServerScript script(greeted({"expect tools/call", textResult(dispatched + forAgents)}));
  EXPECT_EQ(runWithFakeServer({"run", "Shop", "--all"}).output,
            dispatched + "\n\nNext: corvanectl follow 0f8fad5b-d9cb-469f-a165-70867728950e\n");
}

TEST(RunAndFollow, SaysThatTheAppWasNotLaunched) {
  const std::string answer =
      dispatched + "\n  Corvane.app: <not found>  (LAUNCH FAILED — open Corvane manually)";
  const FakeServerScript script(greeted({"expect tools/call", textResult(answer)}));
  const auto run = runWithFakeServer({"run", "Shop", "--all"});
  EXPECT_EQ(run.status, 5);
  EXPECT_EQ(run.errors,
            "corvanectl: Corvane.app could not be started; open it yourself\n"
            "corvanectl: the request waits for it; follow it with 'corvanectl follow "
            "0f8fad5b-d9cb-469f-a165-70867728950e' or cancel it with 'corvanectl cancel "
            "0f8fad5b-d9cb-469f-a165-70867728950e'\n");
}

}  // namespace
}  // namespace corvane::testing
