#include <fcntl.h>
#include <sys/file.h>
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

/// Where some time passes between the start of the app and the moment from which the system shows
/// it.
class SlowlyLaunchedAppTest : public LaunchedAppTest {
 protected:
  [[nodiscard]] ServerProcess::Setup slowSetup() const {
    auto given = setup();
    given.environment = {"LD_PRELOAD=" CORVANE_FILE_FAULTS,
                         // The sanitizer wants to be loaded first, but does not need to be.
                         "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0",
                         "CORVANE_FAULT_JOURNAL=" + journal.string(), "CORVANE_FAULT_EXEC=slow"};
    return given;
  }
  void expectDispatched(ServerProcess& server) const {
    EXPECT_NE(textOf(server.readLine()).find("\n  Corvane.app: " + app.bundle().string() + "\n"),
              std::string::npos);
  }
  void expectOneStart() const {
    auto starts = TestFiles::lines(journal);
    std::erase_if(starts, [](const auto& line) { return !line.starts_with("exec "); });
    EXPECT_EQ(starts, std::vector<std::string>{"exec " + app.program().string()});
    EXPECT_TRUE(ProcessFacts::isAlive(app.waitUntilUp()));
  }

  void expectOneStartForSixCalls(ServerProcess::Setup given) const {
    ServerProcess server(std::move(given));
    std::string calls;
    for (int id = 1; id <= 6; ++id) calls += call(id, "run_test", anyRun) + "\n";
    server.send(calls);
    for (int id = 1; id <= 6; ++id) expectDispatched(server);
    expectOneStart();
  }

  const fs::path journal = home.path() / "journal";
};

// Fails when the next call looks before the system shows what the last one started.
TEST_F(SlowlyLaunchedAppTest, IsStartedOnceForCallsThatComeAtOnce) {
  expectOneStartForSixCalls(slowSetup());
}

// Fails when calls take turns only by means of the bundle, as some file systems have no locks.
TEST_F(SlowlyLaunchedAppTest, IsStartedOnceWhereTheBundleCannotBeLocked) {
  auto given = slowSetup();
  given.environment.push_back("CORVANE_FAULT_ROOT=" + app.bundle().string());
  given.environment.push_back("CORVANE_FAULT_REFUSED=open");
  expectOneStartForSixCalls(std::move(given));
}

// Fails when servers do not take turns.
TEST_F(SlowlyLaunchedAppTest, IsStartedOnceForSeveralServers) {
  ServerProcess first(slowSetup());
  ServerProcess second(slowSetup());
  ServerProcess third(slowSetup());
  const std::vector<ServerProcess*> servers{&first, &second, &third};
  for (auto* server : servers) server->sendLine(call(1, "run_test", anyRun));
  for (auto* server : servers) expectDispatched(*server);
  expectOneStart();
}

// Fails when a server that does not go on holds up the others for good.
TEST_F(SlowlyLaunchedAppTest, IsStartedAllTheSameWhenAnotherServerIsStuck) {
  const FileDescriptor stuck(::open(app.bundle().c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(stuck.get(), LOCK_EX), 0);
  ServerProcess server(slowSetup());
  server.sendLine(call(1, "run_test", anyRun));
  expectDispatched(server);
  expectOneStart();
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
