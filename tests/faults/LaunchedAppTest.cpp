#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "tests/faults/FaultTest.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/TemporaryApp.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// The app that the server starts.
class LaunchedAppTest : public FaultTest {
 protected:
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

// Fails when the server keeps the disposition that it was started with.
TEST_F(LaunchedAppTest, IsLaunchedForAClientThatIgnoresItsChildren) {
  auto given = setup();
  given.ignoredSignals = {SIGCHLD};
  ServerProcess server(std::move(given));
  server.sendLine(call(1, "run_test", anyRun));
  EXPECT_NE(textOf(server.readLine()).find("\n  Corvane.app: " + app.bundle().string() + "\n"),
            std::string::npos);
  const pid_t process = app.waitUntilUp();
  EXPECT_TRUE(ProcessFacts::isAlive(process));
  EXPECT_TRUE(ProcessFacts::children(server.id()).empty());
  // SIGCHLD, the 17th, is not among those that it ignores.
  const auto ignored = std::stoull(ProcessFacts::status(server.id(), "SigIgn"), nullptr, 16);
  EXPECT_EQ(ignored & (1ULL << (SIGCHLD - 1)), 0U);
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
  fs::copy_file(FaultTest::program(), program);
  auto given = setup();
  given.program = program;
  ServerProcess server(std::move(given));
  server.sendLine(call(1, "health", "{}"));
  EXPECT_NE(textOf(server.readLine()).find("\n  Corvane.app:      " + bundle.string() + "\n"),
            std::string::npos);
}

}  // namespace
}  // namespace corvane::testing
