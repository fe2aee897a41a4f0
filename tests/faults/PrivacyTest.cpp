#include <csignal>

#include "tests/faults/FaultTest.h"
#include "tests/support/TemporaryApp.h"
#include "tests/support/Timeout.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// What the programs make in a home that others may look into.
class PrivacyTest : public FaultTest {
 protected:
  PrivacyTest() { TestFiles::setMode(home.path(), 0755); }

  /// Started with this umask, and never launching an app.
  [[nodiscard]] ServerProcess::Setup setupWith(mode_t umask) const {
    auto given = setup();
    given.environment = {"CORVANE_MCP_SUPPRESS_LAUNCH=1"};
    given.umask = umask;
    return given;
  }

  /// Expects that only the user may use what lies below the home; returns how much it is.
  std::size_t expectPrivate() const {
    std::size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(home.path())) {
      EXPECT_EQ(TestFiles::mode(entry.path()), entry.is_directory() ? 0700U : 0600U)
          << entry.path();
      ++count;
    }
    return count;
  }
};

// Fails when anything that the server writes, its log included, is left to the umask.
TEST_F(PrivacyTest, WhatTheServerMakesIsForTheUserAlone) {
  for (const mode_t umask : {0U, 022U, 077U}) {
    SCOPED_TRACE(umask);
    fs::remove_all(home.path() / ".local");
    fs::remove_all(home.path() / "Library");
    ServerProcess server(setupWith(umask));
    server.sendLine(call(1, "run_test", anyRun));
    EXPECT_TRUE(textOf(server.readLine()).starts_with("Run request dispatched"));
    const std::string id = listVisible(paths.agentRunRequestsDirectory()).at(0).filename();
    server.sendLine(call(2, "cancel_run", R"({"requestId":")" + id.substr(0, 36) + "\"}"));
    EXPECT_NE(server.readLine().find("had not picked it up yet"), std::string::npos);
    server.sendLine(call(3, "cancel_run", R"({"requestId":")" + id.substr(0, 36) + "\"}"));
    EXPECT_NE(server.readLine().find("Cancellation requested"), std::string::npos);
    server.sendLine(call(4, "run_test", anyRun));
    server.sendLine(call(5, "create_test", anyPayload));
    EXPECT_FALSE(server.readLine().empty());
    EXPECT_FALSE(server.readLine().empty());
    server.closeInput();
    EXPECT_EQ(server.wait(), "exit 0");
    // A run request, a marker, a result, a payload, the log and the nine folders they lie in.
    EXPECT_EQ(expectPrivate(), 14U);
  }
}

// Fails when a new server goes on with what an old one left open.
TEST_F(PrivacyTest, WhatWasOpenIsClosedAtTheStart) {
  for (const auto& file : {paths.agentRunRequestsDirectory() / "old.runrequest.json",
                           paths.agentResultsDirectory() / "old.json", paths.agentContextFile(),
                           paths.logFile(), paths.logsDirectory() / "mcp.1.log"}) {
    TestFiles::write(file, "{}");
    TestFiles::setMode(file, 0644);
  }
  const std::vector<fs::path> ours{paths.applicationSupport(), paths.logsDirectory()};
  for (const auto& top : ours) {
    for (fs::path each = top; each != home.path(); each = each.parent_path()) {
      TestFiles::setMode(each, 0755);
    }
    for (const auto& each : listVisible(top)) {
      if (fs::is_directory(each)) TestFiles::setMode(each, 0755);
    }
  }
  ServerProcess server(setupWith(022));
  server.sendLine(ping(1));
  EXPECT_EQ(server.readLine(), pong(1));
  for (const auto& top : ours) {
    EXPECT_EQ(TestFiles::mode(top), 0700U);
    for (const auto& entry : fs::recursive_directory_iterator(top)) {
      EXPECT_EQ(TestFiles::mode(entry.path()), entry.is_directory() ? 0700U : 0600U)
          << entry.path();
    }
  }
  // What is not the server's is not its affair.
  for (const auto& above : {home.path(), home.path() / ".local", home.path() / "Library"}) {
    EXPECT_EQ(TestFiles::mode(above), 0755U) << above;
  }
}

// Fails when the stand-in leaves a file to the umask, pictures of a screen among them.
TEST_F(PrivacyTest, WhatTheStandInMakesIsForTheUserAlone) {
  TestFiles::write(paths.applicationSupport() / "StandIn" / "settings.json",
                   R"({"coldStartSeconds":0,"stepSeconds":0,"buildSeconds":0})");
  TestFiles::setMode(paths.applicationSupport() / "StandIn" / "settings.json", 0600);
  for (fs::path each = paths.applicationSupport() / "StandIn"; each != home.path();
       each = each.parent_path()) {
    TestFiles::setMode(each, 0700);
  }
  auto given = setupWith(0);
  given.program = CORVANE_STANDIN_PROGRAM;
  ServerProcess standIn(std::move(given));
  waitUntil("the stand-in has taken up its work",
            [&] { return fileExists(paths.agentActivityFile()); });
  ServerProcess server(setupWith(0));
  server.sendLine(call(1, "run_test",
                       R"({"projectName":"Corner Shop","buildFirst":false,)"
                       R"("testNames":["Browse the catalogue"]})"));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("Run request dispatched"));
  const auto finished = [&] {
    const auto results = listVisible(paths.agentResultsDirectory());
    return !results.empty() &&
           TestFiles::read(results.front()).find("\"passed\"") != std::string::npos;
  };
  waitUntil("the run has passed", finished);
  ::kill(standIn.id(), SIGTERM);
  EXPECT_EQ(standIn.wait(), "exit 0");
  EXPECT_GT(expectPrivate(), 20U);
}

}  // namespace
}  // namespace corvane::testing
