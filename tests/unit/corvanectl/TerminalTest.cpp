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

class ProgressTest : public ::testing::Test {
 protected:
  Interruption interruption;
  Output output;
  TextStream stream{output.descriptor(), interruption};
};

TEST_F(ProgressTest, LineByLineShowsWhatChanged) {
  ProgressLine line(stream, ProgressStyle::lines);
  for (const char* message : {"one", "one", "two", "one", ""}) line.show(message);
  line.erase();
  EXPECT_EQ(output.text(), "one\ntwo\none\n\n");
}

TEST_F(ProgressTest, LiveDrawsOverItselfAndIsErased) {
  ProgressLine line(stream, ProgressStyle::live);
  line.show("one");
  line.show("two\nlines");
  line.show("two\nlines");
  line.erase();
  line.erase();
  EXPECT_EQ(output.text(), "\r\033[Kone\r\033[Ktwo lines\r\033[K");
}

TEST_F(ProgressTest, NoneShowsNothing) {
  ProgressLine line(stream, ProgressStyle::none);
  line.show("one");
  line.erase();
  EXPECT_EQ(output.text(), "");
}

TEST_F(ProgressTest, LiveLeavesTheLastColumnFree) {
  Pseudoterminal terminal(10);
  TextStream narrow(terminal.side(), interruption);
  ProgressLine(narrow, ProgressStyle::live).show("0123456789");
  EXPECT_EQ(terminal.readUntil("…"), "\r\033[K0123456…");
}

TEST_F(ProgressTest, ConsoleKeepsTextAndProgressApart) {
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

TEST_F(ProgressTest, ConsoleDrawsNothingOnASimpleTerminal) {
  ::setenv("TERM", "dumb", 1);
  Pseudoterminal terminal(40);
  Console console(interruption, terminal.side(), terminal.side());
  console.startProgress(ProgressPlace::withResults);
  console.progress("working");
  console.endProgress();
  console.startProgress(ProgressPlace::besideResults);
  console.progress("unseen");
  console.endProgress();
  console.print("done\n");
  EXPECT_EQ(terminal.readUntil("done\r\n"), "working\r\ndone\r\n");
}

TEST_F(ProgressTest, WritingEndsAtASignal) {
  const Pipe full = makePipe();
  TextStream stalled(full.writeEnd.get(), interruption);
  ::raise(SIGTERM);
  EXPECT_THROW(stalled.write(std::string(1'000'000, 'x')), Interrupted);
}

TEST_F(ProgressTest, WritingReportsAReaderThatHasGone) {
  Pipe pipe = makePipe();
  pipe.readEnd.close();
  TextStream stream(pipe.writeEnd.get(), interruption);
  EXPECT_THROW(stream.write("x"), OutputClosed);
}

std::vector<std::string> followArguments() {
  return {"--server", FakeServerScript::program(), "follow", "ID"};
}

TEST(Terminal, ShowsOneLiveLineCutToTheWidth) {
  std::vector<std::string> lines{"expect tools/call", "progress queued",
                                 "progress running — step 1/3: Tap the big button"};
  for (auto& line : finishedResult("passed", "{}")) {
    if (line != "expect tools/call") lines.push_back(line);
  }
  const FakeServerScript script(greeted(lines));
  Pseudoterminal terminal(24);
  const int program = terminal.start(followArguments());
  EXPECT_EQ(terminal.readAll(),
            "\r\033[Kqueued\r\033[Krunning — step 1/3: …\r\033[Kpassed\r\n{}\r\n");
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

TEST(Terminal, CtrlCEndsTheServerAndFreesTheLine) {
  const FakeServerScript script(
      greeted({"ignoreTerm", "expect tools/call", "progress running — step 1/3", "hang"}));
  Pseudoterminal terminal(80);
  const int program = terminal.start(followArguments());
  terminal.readUntil("step 1/3");
  terminal.type("\x03");
  EXPECT_TRUE(terminal.readAll().ends_with("\r\033[K"));
  EXPECT_EQ(waitForStatus(program), 128 + SIGINT);
  EXPECT_TRUE(script.serverIsGone());
}

}  // namespace
}  // namespace corvane::testing
