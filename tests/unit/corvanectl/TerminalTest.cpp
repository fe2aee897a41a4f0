#include <gtest/gtest.h>
#include <signal.h>

#include "FakeServerScript.h"
#include "ProgramRun.h"
#include "corvanectl/system/ChildProcess.h"
#include "corvanectl/terminal/Console.h"

namespace corvane::testing {
namespace {

using namespace ctl;

/// What a program wrote into a pipe.
class Output {
 public:
  [[nodiscard]] int descriptor() const { return pipe.writeEnd.get(); }
  std::string text() {
    pipe.writeEnd.close();
    std::string all(std::size_t{1} << 16, '\0');
    const ssize_t count = ::read(pipe.readEnd.get(), all.data(), all.size());
    all.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return all;
  }

 private:
  Pipe pipe = makePipe();
};

class ConsoleTest : public ::testing::Test {
 protected:
  Interruption interruption;
  Output output;
  TextStream stream{output.descriptor(), interruption};
};

TEST_F(ConsoleTest, LiveDrawsOverItselfAndIsErased) {
  LiveLine line(stream);
  line.show("one");
  line.show("two\nlines");
  line.show("two\nlines");
  line.erase();
  line.erase();
  EXPECT_EQ(output.text(), "\r\033[Kone\r\033[Ktwo lines\r\033[K");
}

TEST_F(ConsoleTest, LiveLeavesTheLastColumnFree) {
  Pseudoterminal terminal(10);
  TextStream narrow(terminal.side(), interruption);
  LiveLine(narrow).show("0123456789");
  EXPECT_EQ(terminal.readUntil("…"), "\r\033[K0123456…");
}

TEST_F(ConsoleTest, ConsoleKeepsTextAndProgressApart) {
  ::setenv("TERM", "xterm", 1);
  Pseudoterminal terminal(40);
  Console console(interruption, terminal.side(), terminal.side());
  console.startProgress(ProgressPlace::withResults);
  console.progress("working");
  console.printError("log\n");
  console.endProgress();
  console.print("done\n");
  EXPECT_EQ(terminal.readUntil("done\r\n"),
            "\r\033[Kworking\r\033[Klog\r\n\r\033[Kworking\r\033[Kdone\r\n");
}

TEST_F(ConsoleTest, WritingEndsAtASignal) {
  const Pipe full = makePipe();
  TextStream stalled(full.writeEnd.get(), interruption);
  ::raise(SIGTERM);
  EXPECT_THROW(stalled.write(std::string(1'000'000, 'x')), Interrupted);
}

TEST_F(ConsoleTest, WritingReportsAReaderThatHasGone) {
  Pipe pipe = makePipe();
  pipe.readEnd.close();
  TextStream stream(pipe.writeEnd.get(), interruption);
  EXPECT_THROW(stream.write("x"), OutputClosed);
}

std::vector<std::string> followArguments() {
  return {"--server", FakeServerScript::program(), "follow",
          "0a1b2c3d-0000-4000-8000-00000000abcd"};
}

/// A running request at the first of three steps.
const std::string atFirstStep = textResult(
    "status: running (NOT terminal — run still in progress, call get_result again)\n"
    R"(appRunning: true)"
    "\n\n"
    R"({"schemaVersion":3,"requestId":"r","source":"run_test","status":"running",)"
    R"("terminal":false,"updatedAt":"2026-01-31T12:00:00Z",)"
    R"("progress":{"currentStep":1,"totalSteps":3}})");

TEST(Terminal, ShowsOneLiveLineCutToTheWidth) {
  std::vector<std::string> lines{"expect tools/call", atFirstStep};
  for (auto& line : finishedResult("passed", "{}")) lines.push_back(line);
  const FakeServerScript script(greeted(lines));
  Pseudoterminal terminal(8);
  const int program = terminal.start(followArguments());
  EXPECT_EQ(terminal.readAll(), "\r\033[Kstep …\r\033[Kpassed\r\n{}\r\n");
  EXPECT_EQ(waitForStatus(program), 0);
}

TEST(Terminal, EndsTheTextOfACallWithALine) {
  const FakeServerScript script(greeted({"expect tools/call", textResult("ok")}));
  Pseudoterminal terminal(24);
  const int program = terminal.start({"--server", FakeServerScript::program(), "health"});
  EXPECT_EQ(terminal.readAll(), "ok\r\n");
  EXPECT_EQ(waitForStatus(program), 0);
}

TEST(Terminal, WrapsTheListOfTools) {
  const FakeServerScript script(
      greeted({"expect tools/list",
               R"(result {"tools":[{"name":"x","description":"One two three four."}]})"}));
  Pseudoterminal terminal(12);
  const int program = terminal.start({"--server", FakeServerScript::program(), "tools"});
  EXPECT_EQ(terminal.readAll(), "x  One two\r\n   three\r\n   four.\r\n");
  EXPECT_EQ(waitForStatus(program), 0);
}

TEST(Terminal, CtrlCEndsTheServerFreesTheLineAndTellsHowToGoOn) {
  const FakeServerScript script(
      greeted({"ignoreTerm", "expect tools/call", atFirstStep, "expect tools/call", "hang"}));
  Pseudoterminal terminal(80);
  const int program = terminal.start(followArguments());
  terminal.readUntil("step 0/3");
  terminal.type("\x03");
  const std::string& shown = terminal.readAll();
  EXPECT_TRUE(
      shown.ends_with("\r\033[Kcorvanectl: the request goes on; follow it with "
                      "'corvanectl follow 0a1b2c3d-0000-4000-8000-00000000abcd' or cancel it with "
                      "'corvanectl cancel 0a1b2c3d-0000-4000-8000-00000000abcd'\r\n"))
      << shown;
  EXPECT_EQ(waitForStatus(program), 128 + SIGINT);
  EXPECT_TRUE(script.serverIsGone());
}

}  // namespace
}  // namespace corvane::testing
