#include <gtest/gtest.h>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"
#include "FakeServerScript.h"
#include "ProgramRun.h"

namespace corvane::testing {
namespace {

const std::string running =
    "status: running (NOT terminal — run still in progress, call get_result again)\n"
    "appRunning: true\nsecondsSinceUpdate: 1\n\n{}";

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

TEST(Follow, ShowsEachProgressMessageOnceAndThenTheSummary) {
  const FakeServerScript script(greeted(
      joined({"expect tools/call", "progress queued — position 2", "progress queued — position 2",
              "progress running — step 1/2", textResult(running), "expect tools/call",
              "progress running — step 1/2", "progress running — step 2/2", textResult(running)},
             finishedResult("passed", passedJson))));
  const auto run = runWithFakeServer({"follow", "ID"});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_EQ(run.output,
            "queued — position 2\nrunning — step 1/2\nrunning — step 2/2\npassed: Shop\n");
  ASSERT_EQ(calls(script).size(), 3U);
  EXPECT_EQ(calls(script).front(),
            readJson(R"({"name":"get_result","arguments":{"requestId":"ID","waitSeconds":120},)"
                     R"("_meta":{"progressToken":2}})"));
}

TEST(Follow, ShowsWhatIsWrongWithARunUntilItIsOver) {
  const std::string orphaned =
      textResult("status: running (NOT terminal — but Corvane.app is NOT running)\n\n{}");
  const FakeServerScript script(greeted(joined(
      {"expect tools/call", "progress step 1", orphaned, "expect tools/call", "progress step 1",
       orphaned, "expect tools/call", "progress step 1", textResult(running)},
      finishedResult("passed", passedJson))));
  EXPECT_EQ(runWithFakeServer({"follow", "ID"}).output,
            "step 1\nrunning (NOT terminal — but Corvane.app is NOT running)\n"
            "step 1\npassed: Shop\n");
}

TEST(Follow, EndsAsTheRequestEnded) {
  const std::vector<std::pair<std::string, int>> endings{
      {"passed", 0}, {"imported", 0}, {"failed", 1}, {"buildFailed", 1}, {"blocked", 3}};
  for (const auto& [status, exitStatus] : endings) {
    const FakeServerScript script(greeted(finishedResult(status, "{}")));
    EXPECT_EQ(runWithFakeServer({"follow", "ID"}).status, exitStatus) << status;
  }
}

TEST(Follow, PrintsOnlyTheResultAsJson) {
  const FakeServerScript script(
      greeted(joined({"expect tools/call", "progress running", textResult(running)},
                     finishedResult("passed", passedJson))));
  const auto run = runWithFakeServer({"follow", "ID", "--json"});
  EXPECT_EQ(run.output, passedJson + "\n");
  EXPECT_EQ(run.errors, "");
}

TEST(Follow, ShowsTheToolsOwnError) {
  const FakeServerScript script(
      greeted({"expect tools/call", textResult("error:unknown_request_id\n\nNo result", true)}));
  const auto run = runWithFakeServer({"follow", "ID"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "error:unknown_request_id\n\nNo result");
}

TEST(Follow, GivesUpWhenTheTimeHasRunOut) {
  // More polls than there is time for.
  std::vector<std::string> polls;
  for (int i = 0; i < 8; ++i) {
    polls.emplace_back("expect tools/call");
    polls.push_back(textResult(running));
  }
  const FakeServerScript script(greeted(polls));
  const auto run = runWithFakeServer({"follow", "ID", "--timeout", "2"});
  EXPECT_EQ(run.status, 4);
  EXPECT_NE(run.errors.find("has not finished in the time given; its status is running"),
            std::string::npos);
  const AnyCodable first = calls(script).front();
  // Starting the server may take some of the time.
  const auto waits = *first.find("arguments")->find("waitSeconds")->integer();
  EXPECT_TRUE(waits == 1 || waits == 2) << waits;
}

TEST(Follow, GivesUpOnAServerThatDoesNotAnswerInTime) {
  const FakeServerScript script(greeted({"expect tools/call", "hang"}));
  const auto run = runWithFakeServer({"follow", "ID", "--timeout", "2"});
  EXPECT_EQ(run.status, 4);
  // Two seconds beyond the user's time, of which starting the server has taken its part.
  constexpr std::string_view lead = "corvanectl: the server did not answer tools/call within ";
  ASSERT_TRUE(run.errors.starts_with(lead) && run.errors.ends_with(" s\n")) << run.errors;
  const double seconds = std::stod(run.errors.substr(lead.size()));
  EXPECT_TRUE(seconds > 2 && seconds <= 4) << seconds;
  EXPECT_TRUE(script.serverIsGone());
}

TEST(Follow, CountsAServerThatDiesAsProtocolTrouble) {
  const FakeServerScript script(greeted({"expect tools/call", "progress running", "crash"}));
  EXPECT_EQ(runWithFakeServer({"follow", "ID"}).status, 2);
}

TEST(Follow, CountsAnAnswerWithoutStatusAsProtocolTrouble) {
  const FakeServerScript script(greeted({"expect tools/call", textResult("all is well")}));
  EXPECT_EQ(runWithFakeServer({"follow", "ID"}).status, 2);
}

TEST(Follow, SavesThePicturesOfAStep) {
  const std::string answer = R"({"type":"text","text":"status: passed (terminal)\n\n{}"})";
  const std::string advice = R"({"type":"text","text":"advice"})";
  const FakeServerScript script(
      greeted({"expect tools/call",
               "result {\"content\":[" + answer + "," + advice + "],\"isError\":false}",
               "expect tools/call",
               "result {\"content\":[" + answer + "," + advice +
                   R"(,{"type":"text","text":"step 3 screenshots"},)"
                   R"({"type":"image","data":"Zm9v","mimeType":"image/jpeg"}],"isError":false})"}));
  const TemporaryDirectory directory;
  const auto run = runWithFakeServer({"follow", "ID", "--pictures", directory.path()});
  EXPECT_EQ(run.output, "passed\n{}\nstep 3 screenshots\n" +
                            (directory.path() / "get_result-1.jpg").string() + "\n");
  EXPECT_EQ(readFile(directory.path() / "get_result-1.jpg"), "foo");
  EXPECT_EQ(
      calls(script).back(),
      readJson(R"({"name":"get_result","arguments":{"includeStepTrace":true,"requestId":"ID"}})"));
}

// Fails when the lines about the pictures stand among the JSON.
TEST(Follow, TellsOfPicturesBesideTheJson) {
  const std::string answer = R"({"type":"text","text":"status: passed (terminal)\n\n{}"})";
  const FakeServerScript script(
      greeted({"expect tools/call", "result {\"content\":[" + answer + "]}", "expect tools/call",
               "result {\"content\":[" + answer +
                   R"(,{"type":"image","data":"Zm9v","mimeType":"image/jpeg"}]})"}));
  const TemporaryDirectory directory;
  const auto run = runWithFakeServer({"follow", "ID", "--json", "--pictures", directory.path()});
  EXPECT_EQ(run.output, "{}\n");
  EXPECT_EQ(run.errors, (directory.path() / "get_result-1.jpg").string() + "\n");
}

/// The script with a server that takes its time before it greets.
std::vector<std::string> slowlyGreeted(std::vector<std::string> lines) {
  lines = greeted(std::move(lines));
  lines.insert(lines.begin() + 1, "delay 1500");
  return lines;
}

// Fails when the time is counted from after the server's start.
TEST(Follow, CountsTheServersStartAsTimeGone) {
  const FakeServerScript script(slowlyGreeted(finishedResult("passed", passedJson)));
  EXPECT_EQ(runWithFakeServer({"follow", "ID", "--timeout", "4"}).status, 0);
  ASSERT_EQ(calls(script).size(), 1U);
  EXPECT_LT(*calls(script).front().find("arguments")->find("waitSeconds")->integer(), 4);
}

const std::string dispatched =
    "Run request dispatched to Corvane.\n\n  requestId:   0f8fad5b-d9cb-469f-a165-70867728950e\n"
    "  Project:     Shop";

TEST(RunAndFollow, FollowsWhatWasDispatched) {
  const FakeServerScript script(greeted(
      joined({"expect tools/call", textResult(dispatched)}, finishedResult("failed", passedJson))));
  const auto run = runWithFakeServer({"run", "Shop", "--all", "--follow"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, dispatched + "\n\npassed: Shop\n");
  EXPECT_EQ(*calls(script).back().find("arguments")->find("requestId"),
            AnyCodable("0f8fad5b-d9cb-469f-a165-70867728950e"));
}

// Fails when the time is counted from after the server's start.
TEST(RunAndFollow, CountsTheServersStartAsTimeGone) {
  const FakeServerScript script(slowlyGreeted(
      joined({"expect tools/call", textResult(dispatched)}, finishedResult("passed", passedJson))));
  EXPECT_EQ(runWithFakeServer({"run", "Shop", "--all", "--follow", "--timeout", "4"}).status, 0);
  ASSERT_EQ(calls(script).size(), 2U);
  EXPECT_LT(*calls(script).back().find("arguments")->find("waitSeconds")->integer(), 4);
}

TEST(RunAndFollow, PrintsOnlyTheFinalResultAsJson) {
  const FakeServerScript script(greeted(
      joined({"expect tools/call", textResult(dispatched)}, finishedResult("passed", passedJson))));
  EXPECT_EQ(runWithFakeServer({"run", "Shop", "--all", "--follow", "--json"}).output,
            passedJson + "\n");
}

TEST(RunAndFollow, FollowsNothingThatWasNotDispatched) {
  {
    const FakeServerScript script(greeted({"expect tools/call", textResult("error:x", true)}));
    const auto run = runWithFakeServer({"run", "Shop", "--all", "--follow"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "error:x");
  }
  const FakeServerScript script(greeted({"expect tools/call", textResult("done")}));
  EXPECT_EQ(runWithFakeServer({"run", "Shop", "--all", "--follow"}).status, 2);
}

}  // namespace
}  // namespace corvane::testing
