#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <array>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "FakeServerScript.h"
#include "ProgramRun.h"

namespace corvane::testing {
namespace {

const std::string listedTools =
    R"({"tools":[{"description":"Cancel a run. For good.","inputSchema":{"type":"object"},)"
    R"("name":"cancel_run"},{"description":"Check.","inputSchema":{},"name":"health"}]})";

AnyCodable lastParams(const FakeServerScript& script) {
  return *readJson(script.received().back()).find("params");
}

TEST(Program, ListsTools) {
  const FakeServerScript script(greeted({"expect tools/list", "result " + listedTools}));
  const auto run = runWithFakeServer({"tools"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "cancel_run  Cancel a run.\nhealth      Check.\n");
  EXPECT_EQ(run.errors, "");
  EXPECT_TRUE(script.serverIsGone());
}

TEST(Program, ShowsOneTool) {
  const FakeServerScript script(greeted({"expect tools/list", "result " + listedTools}));
  EXPECT_EQ(runWithFakeServer({"tools", "cancel_run"}).output,
            "cancel_run\n\nCancel a run. For good.\n\nArguments (JSON Schema):\n"
            "{\n  \"type\": \"object\"\n}\n");
}

TEST(Program, PrintsToolsAsJson) {
  const FakeServerScript script(greeted({"expect tools/list", "result " + listedTools}));
  EXPECT_EQ(runWithFakeServer({"tools", "--json"}).output,
            toJson(*readJson(listedTools).find("tools")) + "\n");
  EXPECT_EQ(runWithFakeServer({"tools", "health", "--json"}).output,
            R"({"description":"Check.","inputSchema":{},"name":"health"})"
            "\n");
}

TEST(Program, KnowsNoToolThatTheServerDoesNotList) {
  const FakeServerScript script(greeted({"expect tools/list", "result " + listedTools}));
  const auto run = runWithFakeServer({"tools", "dance"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_NE(run.errors.find("no tool named 'dance'"), std::string::npos);
}

TEST(Program, PrintsTheTextsOfACallAsTheyAre) {
  const FakeServerScript script(greeted(
      {"expect tools/call",
       R"(result {"content":[{"type":"text","text":"a\tb\n\n"},{"type":"text","text":"\u001bc"},)"
       R"({"type":"image","data":"Zm9v","mimeType":"image/jpeg"},{"type":"x"}],"isError":false})"}));
  const auto run = runWithFakeServer({"call", "describe_project"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "a\tb\n\n\n\033c\n[image/jpeg, 3 bytes]\n[x]");
  EXPECT_EQ(lastParams(script), readJson(R"({"name":"describe_project","arguments":{}})"));
}

TEST(Program, SavesThePicturesOfACall) {
  const FakeServerScript script(
      greeted({"expect tools/call",
               R"(result {"content":[{"type":"image","data":"Zm9v","mimeType":"image/jpeg"}],)"
               R"("isError":false})"}));
  const TemporaryDirectory directory;
  const auto run = runWithFakeServer({"call", "x", "--pictures", directory.path()});
  EXPECT_EQ(run.output, directory.path() / "x-1.jpg");
  EXPECT_EQ(readFile(directory.path() / "x-1.jpg"), "foo");
}

TEST(Program, TakesArgumentsFromTheLineAFileOrStandardInput) {
  const FakeServerScript script(greeted({"expect tools/call", textResult("ok")}));
  const TemporaryDirectory directory;
  writeFileWhole(directory.path() / "arguments", " {\"a\": [1.5]} \n");
  const AnyCodable expected = readJson(R"({"name":"x","arguments":{"a":[1.5]}})");
  const std::string inFile = "@" + (directory.path() / "arguments").string();

  EXPECT_EQ(runWithFakeServer({"call", "x", R"({"a":[1.5]})"}).status, 0);
  EXPECT_EQ(lastParams(script), expected);
  EXPECT_EQ(runWithFakeServer({"call", "x", inFile}).status, 0);
  EXPECT_EQ(lastParams(script), expected);
  EXPECT_EQ(runWithFakeServer({"call", "x", "-"}, R"({"a":[1.5]})").status, 0);
  EXPECT_EQ(lastParams(script), expected);
  EXPECT_EQ(runWithFakeServer({"call", "x", "--no-arguments"}).status, 0);
  EXPECT_EQ(lastParams(script), readJson(R"({"name":"x"})"));
}

TEST(Program, RefusesArgumentsThatAreNoObject) {
  for (const char* arguments : {"[]", "{", "@/nowhere/file", "-"}) {
    const auto run = runWithFakeServer({"call", "x", arguments});
    EXPECT_EQ(run.status, 64) << arguments;
    EXPECT_TRUE(run.errors.starts_with("corvanectl: ")) << run.errors;
  }
}

TEST(Program, NamesThePlaceThatIsWrongInArguments) {
  const TemporaryDirectory directory;
  const std::string file = directory.path() / "payload.json";
  writeFileWhole(file, "{\n  \"a\": 1,\n  \"b\": tru\n}");
  EXPECT_EQ(
      runWithFakeServer({"call", "x", "@" + file}).errors,
      "corvanectl: " + file + ", line 3, column 8: not valid JSON: unexpected text at byte 19\n");
  EXPECT_EQ(runWithFakeServer({"call", "x", "{\"a\""}).errors,
            "corvanectl: ARGUMENTS, line 1, column 5: not valid JSON: the text ends too early\n");
  EXPECT_EQ(runWithFakeServer({"call", "x", "-"}, "[]").errors,
            "corvanectl: standard input must hold a JSON object, like {\"projectName\":\"Shop\"}; "
            "it holds another value\n");
}

TEST(Program, PassesOnThatAToolReportsAnError) {
  const FakeServerScript script(greeted({"expect tools/call", textResult("error:x", true)}));
  const auto plain = runWithFakeServer({"call", "x"});
  EXPECT_EQ(plain.status, 1);
  EXPECT_EQ(plain.output, "error:x");
  const auto json = runWithFakeServer({"call", "x", "--json"});
  EXPECT_EQ(json.status, 1);
  EXPECT_EQ(json.output, R"({"content":[{"text":"error:x","type":"text"}],"isError":true})"
                         "\n");
}

TEST(Program, CallsTheShortForms) {
  const FakeServerScript script(greeted({"expect tools/call", textResult("ok")}));
  EXPECT_EQ(runWithFakeServer({"health"}).output, "ok");
  EXPECT_EQ(lastParams(script), readJson(R"({"name":"health","arguments":{}})"));
  EXPECT_EQ(runWithFakeServer({"cancel", "0a1b2c3d-0000-4000-8000-00000000abcd"}).output, "ok\n");
  EXPECT_EQ(
      lastParams(script),
      readJson(
          R"({"name":"cancel_run","arguments":{"requestId":"0a1b2c3d-0000-4000-8000-00000000abcd"}})"));
}

TEST(Program, DispatchesARun) {
  const FakeServerScript script(greeted({"expect tools/call", textResult("dispatched")}));
  const auto run = runWithFakeServer({"run", "Shop", "--test", "A", "B", "--no-build"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "dispatched\n");
  EXPECT_EQ(lastParams(script),
            readJson(R"({"name":"run_test","arguments":{"buildFirst":false,"projectName":"Shop",)"
                     R"("testNames":["A","B"]}})"));
}

TEST(Program, TakesHugeAnswers) {
  const FakeServerScript script(greeted({"expect tools/call", "bigText 30000000"}));
  const auto run = runWithFakeServer({"call", "x"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output.size(), 30'000'000U);
  EXPECT_EQ(run.output.find_first_not_of('x'), std::string::npos);
}

TEST(Program, TellsARefusalFromAServerThatDied) {
  {
    const FakeServerScript script(
        greeted({"log chatter", "expect tools/call", "error -32602 Unknown tool: x"}));
    const auto run = runWithFakeServer({"call", "x"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors,
              "corvanectl: the server refused tools/call: Unknown tool: x (error -32602)\n");
  }
  const FakeServerScript script(greeted({"expect tools/call", "log out of \033[1mluck", "exit 3"}));
  const auto run = runWithFakeServer({"call", "x"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.errors,
            "corvanectl: the server ended with exit status 3 before it answered tools/call\n"
            "The server's last words:\n  out of \\u001b[1mluck\n");
}

TEST(Program, ShowsTheServersLogOnlyWhenAsked) {
  const FakeServerScript script(greeted({"log one", "expect tools/call", textResult("ok")}));
  EXPECT_EQ(runWithFakeServer({"health"}).errors, "");
  EXPECT_EQ(runWithFakeServer({"health", "--log"}).errors, "one\n");
}

TEST(Program, GivesUpOnAServerThatNeverAnswers) {
  const FakeServerScript script({"log starting", "ignoreTerm", "hang"});
  const auto run = runWithFakeServer({"health", "--timeout", "2"});
  EXPECT_EQ(run.status, 4);
  EXPECT_EQ(run.errors,
            "corvanectl: the server did not answer initialize within 2 s\n"
            "The server's last words:\n  starting\n");
  EXPECT_TRUE(script.serverIsGone());
}

TEST(Program, ReportsAServerThatIsNotThere) {
  const auto run = runCorvanectl({"--server", "/nowhere/server", "health"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.errors, "corvanectl: could not start /nowhere/server: No such file or directory\n");
}

TEST(Program, EndsQuietlyWhenNobodyReadsItsOutput) {
  const FakeServerScript script(greeted({"expect tools/call", "bigText 1000000"}));
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(ends[1], STDOUT_FILENO);
    ::close(ends[0]);
    becomeCorvanectl({"--server", FakeServerScript::program(), "call", "x"});
  }
  ::close(ends[0]);
  ::close(ends[1]);
  EXPECT_EQ(waitForStatus(child), 128 + SIGPIPE);
  EXPECT_TRUE(script.serverIsGone());
}

TEST(Program, ReportsOutputThatCannotBeWritten) {
  const FakeServerScript script(greeted({"expect tools/call", textResult("ok")}));
  if (::access("/dev/full", W_OK) != 0) GTEST_SKIP() << "needs a device that is always full";
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(STDOUT_FILENO);
    ::close(STDERR_FILENO);
    for (int i = 0; i < 2; ++i) {
      if (std::fopen("/dev/full", "w") == nullptr) ::_exit(99);
    }
    becomeCorvanectl({"--server", FakeServerScript::program(), "call", "x"});
  }
  EXPECT_EQ(waitForStatus(child), 74);
  EXPECT_TRUE(script.serverIsGone());
}

TEST(Program, WorksWithClosedStandardStreams) {
  const FakeServerScript script(greeted({"expect tools/call", "bigText 100000"}));
  const pid_t child = ::fork();
  if (child == 0) {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::close(stream);
    becomeCorvanectl({"--server", FakeServerScript::program(), "call", "x"});
  }
  EXPECT_EQ(waitForStatus(child), 0);
  EXPECT_EQ(script.received().size(), 3U);
}

}  // namespace
}  // namespace corvane::testing
