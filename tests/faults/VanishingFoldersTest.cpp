#include "tests/faults/FaultTest.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

class VanishingFoldersTest : public FaultTest {};

TEST_F(VanishingFoldersTest, AreMadeAgainForTheNextRequest) {
  ServerProcess server(setup());
  server.sendLine(call(1, "run_test", anyRun));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("Run request dispatched to Corvane."));
  fs::remove_all(paths.applicationSupport());
  server.sendLine(call(2, "run_test", anyRun));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("Run request dispatched to Corvane."));
  EXPECT_EQ(requestFiles(), 1U);
  server.closeInput();
  EXPECT_EQ(server.wait(), "exit 0");
}

TEST_F(VanishingFoldersTest, AreNothingToReport) {
  ServerProcess server(setup());
  server.sendLine(ping(1));
  EXPECT_EQ(server.readLine(), pong(1));
  fs::remove_all(home.path());
  server.sendLine(call(2, "get_status", "{}"));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("Corvane status (appRunning: "));
  server.sendLine(call(3, "describe_project", "{}"));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("error:context_unavailable\n"));
  server.sendLine(call(4, "get_result", R"({"requestId":"0a1b2c3d-0000-4000-8000-00000000abcd"})"));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("error:unknown_request_id\n"));
  server.sendLine(call(5, "health", "{}"));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("corvane-mcp is healthy."));
  server.closeInput();
  EXPECT_EQ(server.wait(), "exit 0");
}

TEST_F(VanishingFoldersTest, MayVanishWhileAResultIsAwaited) {
  const std::string id = "0a1b2c3d-0000-4000-8000-00000000abcd";
  const auto file = paths.agentResultsDirectory() / (id + ".json");
  TestFiles::write(file, R"({"status":"running"})");
  ServerProcess server(setup());
  server.sendLine(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"get_result",)"
                  R"("_meta":{"progressToken":"t"},"arguments":{"waitSeconds":60,"requestId":")" +
                  id + "\"}}}");
  // The first look has been taken when progress is told.
  EXPECT_NE(server.readLine().find("notifications\\/progress"), std::string::npos);
  fs::remove_all(paths.agentResultsDirectory());
  TestFiles::write(file, R"({"status":"passed"})");
  std::string last = server.readLine();
  while (last.find("\"id\":1") == std::string::npos) last = server.readLine();
  EXPECT_TRUE(textOf(last).starts_with("status: passed (terminal)\n"));
  server.closeInput();
  EXPECT_EQ(server.wait(), "exit 0");
}

class UntoldKindsTest : public FaultTest {};

// Fails when an entry has to be called a folder to be looked into, or may be a link to one.
TEST_F(UntoldKindsTest, AreFoundOutByLooking) {
  const fs::path derivedData = home.path() / "Library" / "Developer" / "Xcode" / "DerivedData";
  const fs::path build = derivedData / "A" / "Debug" / "Corvane.app";
  fs::create_directories(build);
  TestFiles::write(derivedData / "file", "");
  const fs::path newer = home.path() / "elsewhere" / "Corvane.app";
  fs::create_directories(newer);
  fs::last_write_time(newer, fs::last_write_time(build) + std::chrono::hours(1));
  fs::create_directory_symlink(newer.parent_path(), derivedData / "link");
  auto given = setup();
  given.environment = {"LD_PRELOAD=" CORVANE_FILE_FAULTS, "CORVANE_FAULT_KINDS=untold",
                       "CORVANE_FAULT_ROOT=" + home.path().native()};
  ServerProcess server(std::move(given));
  server.sendLine(call(1, "health", "{}"));
  EXPECT_NE(textOf(server.readLine()).find(build), std::string::npos);
}

}  // namespace
}  // namespace corvane::testing
