#include <gtest/gtest.h>

#include "corvane_mcp/tools/Tools.h"
#include "tests/support/TemporaryApp.h"
#include "tests/support/ToolBench.h"
#include "tests/unit/workspace/WorkspaceBench.h"

namespace corvane::testing {
namespace {

TEST(HealthToolTest, ShowsWhereEverythingLies) {
  ToolBench bench;
  const std::string home = bench.home.path();
  const auto text = [&](const std::string& app) {
    return "corvane-mcp is healthy.\n"
           "  Corvane.app:      " +
           app +
           "\n"
           "  AgentImports:     " +
           home +
           "/.local/share/Corvane/AgentImports\n"
           "  AgentRunRequests: " +
           home +
           "/.local/share/Corvane/AgentRunRequests\n"
           "  AgentResults:     " +
           home +
           "/.local/share/Corvane/AgentResults\n"
           "  MCP log file:     " +
           home + "/Library/Logs/Corvane/mcp.log";
  };
  const MCPTool tool = makeHealthTool(bench.services);
  for (const auto& arguments :
       {std::optional<std::string_view>(), std::optional<std::string_view>("[]"),
        std::optional<std::string_view>(R"({"x":1})")}) {
    const auto result = bench.call(tool, arguments);
    EXPECT_FALSE(result.isError);
    EXPECT_EQ(textOf(result), text("<not found>"));
  }
  std::filesystem::create_directories(home + "/Applications/Corvane.app");
  EXPECT_EQ(textOf(bench.call(tool, "{}")), text(home + "/Applications/Corvane.app"));
}

TEST(HealthToolTest, TakesNoArguments) {
  ToolBench bench;
  EXPECT_EQ(toJson(makeHealthTool(bench.services).inputSchema()),
            R"({"additionalProperties":false,"properties":{},"type":"object"})");
}

const std::string diedNote =
    "warning: Corvane.app is not running — the 'active' work in this snapshot died with it and "
    "will not progress.\n\n";

std::string wedgedNote(int seconds) {
  return "warning: activity claims active work but has not been touched in " +
         std::to_string(seconds) + "s (heartbeat is ~20s) — Corvane may be wedged.\n\n";
}

class GetStatusToolTest : public ::testing::Test {
 protected:
  void publish(std::string_view text) const {
    TestFiles::write(bench.paths.agentActivityFile(), text);
  }
  /// Publishes an activity whose `active` is this JSON text, last touched at the clock's start.
  void publishActive(const std::string& active) const {
    publish(R"({"active":)" + active + R"(,"updatedAt":"2026-01-31T12:00:00Z"})");
  }
  void putResult(const std::string& id, int age) const {
    const auto file = bench.paths.agentResultsDirectory() / (id + ".json");
    TestFiles::write(file, R"({"requestId":")" + id + R"(","status":"passed","terminal":true})");
    TestFiles::setModified(file, bench.clock.now() - std::chrono::seconds(age));
  }
  /// Expects this answer, whatever the arguments.
  void expectStatus(bool appRunning, const std::string& notes, const std::string& members,
                    const std::string& recent = "[]") const {
    const std::string running = appRunning ? "true" : "false";
    const WorkspaceBench::Answer expected{"Corvane status (appRunning: " + running + ").\n\n" +
                                              notes + "{" + members + (members.empty() ? "" : ",") +
                                              R"("appRunning":)" + running +
                                              R"(,"recentRequests":)" + recent + "}",
                                          false};
    EXPECT_EQ(bench.call<makeGetStatusTool>(), expected);
    EXPECT_EQ(bench.call<makeGetStatusTool>(R"({"requestId":"x"})"), expected);
    EXPECT_EQ(bench.call<makeGetStatusTool>("[1]"), expected);
  }
  /// The members about an activity with this `active`.
  [[nodiscard]] static std::string activeMembers(const std::string& active, int age) {
    return R"("activity":{"active":)" + active +
           R"(,"updatedAt":"2026-01-31T12:00:00Z"},"activitySecondsSinceUpdate":)" +
           std::to_string(age);
  }

  WorkspaceBench bench;
};

TEST_F(GetStatusToolTest, WithNothingAtAllSaysWhoLaunchesTheApp) {
  expectStatus(false,
               "note: Corvane.app is not running. run_test/create_test/explore_flow launch it "
               "automatically.\n\n",
               "");
}

TEST_F(GetStatusToolTest, AnAppWithoutActivityMayBeOld) {
  TemporaryApp app(bench.home.path() / "Corvane.app");
  app.open();
  const std::string note =
      "note: Corvane is running but has not published activity.json — it may predate get_status; "
      "the per-request get_result surface still works.\n\n";
  expectStatus(true, note, "");
  for (const char* text : {"", "{", "[]", "null", "7", R"("x")", R"({"active":1}})"}) {
    publish(text);
    expectStatus(true, note, "");
  }
}

TEST_F(GetStatusToolTest, TheActivityPassesThroughUnchanged) {
  publish(R"({"updatedAt":"2026-01-31T11:59:58Z","queued":[{"position":1.0,"kind":"run"}],)"
          R"("futureKey":{"b":0.5,"a":[null,true]},"schemaVersion":9,"device":null})");
  expectStatus(false, "",
               R"("activity":{"device":null,"futureKey":{"a":[null,true],"b":0.5},)"
               R"("queued":[{"kind":"run","position":1}],"schemaVersion":9,)"
               R"("updatedAt":"2026-01-31T11:59:58Z"},"activitySecondsSinceUpdate":2)");
}

TEST_F(GetStatusToolTest, ActiveWorkIsWedgedAfterNinetyOneSeconds) {
  TemporaryApp app(bench.home.path() / "Corvane.app");
  app.open();
  const std::string active = R"({"requestId":"r1"})";
  publishActive(active);
  bench.clock.pass(std::chrono::seconds(90));
  expectStatus(true, "", activeMembers(active, 90));
  bench.clock.pass(std::chrono::milliseconds(999));
  expectStatus(true, "", activeMembers(active, 90));
  bench.clock.pass(std::chrono::milliseconds(1));
  expectStatus(true, wedgedNote(91), activeMembers(active, 91));
  bench.clock.pass(std::chrono::hours(1));
  expectStatus(true, wedgedNote(3691), activeMembers(active, 3691));
  publishActive("null");
  expectStatus(true, "", activeMembers("null", 3691));
}

TEST_F(GetStatusToolTest, ActiveWorkDiedWithTheAppWhateverItsAge) {
  const std::string active = R"({"requestId":"r1"})";
  publishActive(active);
  expectStatus(false, diedNote, activeMembers(active, 0));
  bench.clock.pass(std::chrono::seconds(200));
  expectStatus(false, diedNote, activeMembers(active, 200));
}

TEST_F(GetStatusToolTest, ActiveWorkOfAnyKindCounts) {
  for (const char* active : {"{}", "[]", "false", "0", R"("")"}) {
    publishActive(active);
    expectStatus(false, diedNote, activeMembers(active, 0));
  }
}

TEST_F(GetStatusToolTest, WithoutActiveWorkThereIsNoWarning) {
  bench.clock.pass(std::chrono::seconds(500));
  publishActive("null");
  expectStatus(false, "", activeMembers("null", 500));
  publish(R"({"updatedAt":"2026-01-31T12:00:00Z"})");
  expectStatus(
      false, "",
      R"("activity":{"updatedAt":"2026-01-31T12:00:00Z"},"activitySecondsSinceUpdate":500)");
}

TEST_F(GetStatusToolTest, WithoutAUsableDateThereIsNoAgeAndNoWarning) {
  for (const char* date : {R"("2026-01-31T11:00:00.5Z")", R"("yesterday")", "5", "null"}) {
    publish(R"({"active":{},"updatedAt":)" + std::string(date) + "}");
    expectStatus(false, "", R"("activity":{"active":{},"updatedAt":)" + std::string(date) + "}");
  }
  publish(R"({"active":{}})");
  expectStatus(false, "", R"("activity":{"active":{}})");
}

TEST_F(GetStatusToolTest, AgesAreTruncatedTowardZero) {
  const auto age = [&](const std::string& date) {
    publish(R"({"updatedAt":")" + date + "\"}");
    const std::string text = bench.call<makeGetStatusTool>().text;
    const std::string key = "\"activitySecondsSinceUpdate\":";
    const auto at = text.find(key) + key.size();
    return text.substr(at, text.find(',', at) - at);
  };
  bench.clock.pass(std::chrono::milliseconds(500));
  EXPECT_EQ(age("2026-01-31T12:00:00Z"), "0");
  EXPECT_EQ(age("2026-01-31T12:00:01Z"), "0");
  EXPECT_EQ(age("2026-01-31T12:00:02Z"), "-1");
  EXPECT_EQ(age("2026-01-31T11:59:59Z"), "1");
  EXPECT_EQ(age("2026-01-31T13:00:00+01:00"), "0");
  EXPECT_EQ(age("9999-12-31T23:59:59Z"), "-251632439998");
  EXPECT_EQ(age("0000-01-01T00:00:00Z"), "63937080000");
}

TEST_F(GetStatusToolTest, ListsRecentRequestsWithAndWithoutActivity) {
  putResult("r2", 20);
  putResult("r1", 10);
  const std::string recent =
      R"([{"requestId":"r1","secondsSinceUpdate":10,"status":"passed","terminal":true},)"
      R"({"requestId":"r2","secondsSinceUpdate":20,"status":"passed","terminal":true}])";
  expectStatus(false,
               "note: Corvane.app is not running. run_test/create_test/explore_flow launch it "
               "automatically.\n\n",
               "", recent);
  publish("{}");
  expectStatus(false, "", R"("activity":{})", recent);
}

TEST_F(GetStatusToolTest, NeitherWritesNorLaunches) {
  std::filesystem::create_directories(bench.home.path() / "Applications" / "Corvane.app");
  const auto before = bench.home.entries();
  EXPECT_FALSE(bench.call<makeGetStatusTool>().isError);
  EXPECT_EQ(bench.home.entries(), before);
  EXPECT_TRUE(bench.logged().empty());
}

}  // namespace
}  // namespace corvane::testing
