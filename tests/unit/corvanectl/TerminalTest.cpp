#include <gtest/gtest.h>
#include <signal.h>

#include "FakeServerScript.h"
#include "ProgramRun.h"
#include "Pseudoterminal.h"

namespace corvane {
namespace {

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
}  // namespace corvane
