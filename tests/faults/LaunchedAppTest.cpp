#include <unistd.h>

#include <string>
#include <vector>

#include "tests/faults/FaultTest.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/TemporaryApp.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// The app that the server starts. Its name lets these tests take turns with others that depend on
/// whether the app runs.
class LaunchedAppTest : public FaultTest {
 protected:
  LaunchedAppTest() { waitUntilNoAppRuns(); }

  TemporaryApp app{home.path() / "Applications" / "Corvane.app"};
};

TEST_F(LaunchedAppTest, StandsOnItsOwn) {
  ServerProcess server(setup());
  server.sendLine(call(1, "run_test", anyRun));
  EXPECT_NE(textOf(server.readLine()).find("\n  Corvane.app: " + app.bundle().string() + "\n"),
            std::string::npos);
  const pid_t process = app.waitUntilUp();
  EXPECT_EQ(ProcessFacts::descriptors(process),
            (std::vector<std::string>{"0 -> /dev/null", "1 -> /dev/null", "2 -> /dev/null"}));
  EXPECT_EQ(ProcessFacts::status(process, "SigIgn"), "0000000000000000");
  EXPECT_EQ(ProcessFacts::status(process, "SigBlk"), "0000000000000000");
  EXPECT_NE(::getsid(process), ::getsid(server.id()));
  // Neither a child nor a zombie is left to the server.
  EXPECT_TRUE(ProcessFacts::children(server.id()).empty());

  // The server's streams end with it although the app lives on.
  server.closeInput();
  EXPECT_EQ(server.readToEnd(), std::vector<std::string>());
  EXPECT_EQ(server.wait(), "exit 0");
  EXPECT_TRUE(ProcessFacts::isAlive(process));
}

TEST_F(LaunchedAppTest, OutlivesAServerThatIsKilled) {
  ServerProcess server(setup());
  server.sendLine(call(1, "run_test", anyRun));
  EXPECT_FALSE(server.readLine().empty());
  const pid_t process = app.waitUntilUp();
  ::kill(server.id(), SIGKILL);
  EXPECT_EQ(server.wait(), "signal 9");
  EXPECT_TRUE(ProcessFacts::isAlive(process));
}

TEST_F(LaunchedAppTest, IsTheOneAroundTheServer) {
  const fs::path bundle = home.path() / "Elsewhere" / "Corvane.app";
  const fs::path program = bundle / "Contents" / "MacOS" / "corvane-mcp";
  fs::create_directories(program.parent_path());
  fs::copy_file(CORVANE_MCP_PROGRAM, program);
  auto given = setup();
  given.program = program;
  ServerProcess server(std::move(given));
  server.sendLine(call(1, "health", "{}"));
  EXPECT_NE(textOf(server.readLine()).find("\n  Corvane.app:      " + bundle.string() + "\n"),
            std::string::npos);
}

}  // namespace
}  // namespace corvane::testing
