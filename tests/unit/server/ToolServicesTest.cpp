#include "corvane_mcp/tools/ToolServices.h"

#include <gtest/gtest.h>

#include "CorvaneCore/requests/Requests.h"
#include "tests/support/TemporaryApp.h"
#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(DispatchTest, DescribesALaunch) {
  EXPECT_EQ((Dispatch::Launch{"/a/Corvane.app", true}).describe(), "/a/Corvane.app");
  EXPECT_EQ((Dispatch::Launch{"/a/Corvane.app", false}).describe(),
            "/a/Corvane.app  (LAUNCH FAILED — open Corvane manually)");
  EXPECT_EQ(Dispatch::describeApp("/a/Corvane.app"), "/a/Corvane.app");
  EXPECT_EQ(Dispatch::describeApp("/a/\xff.app"), "/a/\xEF\xBF\xBD.app");
  EXPECT_EQ(Dispatch::describeApp(std::nullopt), "<not found>");
}

TEST(DispatchTest, MakesTheNextCallReadyToCopy) {
  EXPECT_EQ(Dispatch::getResultCall("some-id", 120),
            R"(get_result {"requestId":"some-id","waitSeconds":120})");
}

TEST(DispatchTest, WritesARequestAndLogsIt) {
  ToolBench bench;
  AgentRunRequest request;
  request.requestId = "some-id";
  const auto path = bench.paths.agentRunRequestsDirectory() / "some-id.runrequest.json";
  EXPECT_EQ(Dispatch::writeRequest(request, "run request", bench.services), path);
  EXPECT_EQ(AgentRunRequest::read(path).requestId, "some-id");
  EXPECT_EQ(bench.logged(), Lines{"INFO Wrote run request: " + path.string()});
}

TEST(DispatchTest, SaysWhyARequestCannotBeWritten) {
  ToolBench bench;
  TestFiles::write(bench.paths.agentRunRequestsDirectory(), "a file");
  AgentRunRequest request;
  request.requestId = "some-id";
  try {
    Dispatch::writeRequest(request, "run request", bench.services);
    ADD_FAILURE();
  } catch (const JSONRPCError& error) {
    EXPECT_EQ(error.code, -32603);
    EXPECT_EQ(error.message,
              "Failed to write run request: could not write " +
                  (bench.paths.agentRunRequestsDirectory() / "some-id.runrequest.json").string() +
                  ": Not a directory");
  }
  EXPECT_EQ(bench.logged(), Lines());
}

TEST(DispatchTest, SaysWhenThereIsNoAppToLaunch) {
  ToolBench bench;
  const auto launch = Dispatch::launchApp(bench.services);
  EXPECT_EQ(launch.describe(), "<not found>  (LAUNCH FAILED — open Corvane manually)");
  EXPECT_FALSE(launch.succeeded);
  EXPECT_EQ(bench.logged(), Lines{"WARN Could not locate Corvane.app to launch"});
}

TEST(DispatchAppTest, LaunchesTheAppUnlessItRuns) {
  waitUntilNoAppRuns();
  ToolBench bench;
  const TemporaryApp app(bench.home.path() / "Applications" / "Corvane.app");
  const auto first = Dispatch::launchApp(bench.services);
  EXPECT_EQ(first.describe(), app.bundle());
  EXPECT_TRUE(first.succeeded);
  const pid_t process = app.waitUntilUp();
  const auto second = Dispatch::launchApp(bench.services);
  EXPECT_TRUE(second.succeeded);
  EXPECT_EQ(app.waitUntilUp(), process);
  EXPECT_EQ(bench.logged(), Lines());
}

TEST(DispatchAppTest, ReportsAnAppThatCannotBeStarted) {
  waitUntilNoAppRuns();
  ToolBench bench;
  const auto bundle = bench.home.path() / "Applications" / "Corvane.app";
  std::filesystem::create_directories(bundle);
  EXPECT_EQ(Dispatch::launchApp(bench.services).describe(),
            bundle.string() + "  (LAUNCH FAILED — open Corvane manually)");
}

}  // namespace
}  // namespace corvane::testing
