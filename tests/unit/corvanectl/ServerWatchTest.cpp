#include "corvanectl/follow/ServerWatch.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/JsonReader.h"
#include "FakeServerScript.h"

namespace corvane::testing {
namespace {

using namespace ctl;

/// A watch on a server that answers by a script.
class ServerWatchTest : public ::testing::Test {
 protected:
  void answer(const std::string& text) {
    lines.emplace_back("expect tools/call");
    lines.push_back(textResult(text));
  }
  /// Does what `use` does with a watch on request ID, and gives the calls that came of it.
  template <class Use>
  std::vector<AnyCodable> watching(std::optional<ServerWatch::Run> run, Use use) {
    const FakeServerScript script(greeted(lines));
    ServerProcess server(FakeServerScript::program(), log, interruption);
    McpClient client(server, [](std::string_view) {});
    client.initialize(after(Seconds(20)));
    client.whileWaiting(Seconds(0.01), [this] { ++ticks; });
    ServerWatch watch("ID", std::move(run), client, interruption, {Seconds(20), never});
    use(watch);
    std::vector<AnyCodable> calls;
    for (const auto& line : script.received()) {
      const AnyCodable message = readJson(line);
      if (*message.find("method") == AnyCodable("tools/call")) {
        calls.push_back(*message.find("params"));
      }
    }
    return calls;
  }
  static std::string terminal(const std::string& tests) {
    return R"(status: passed (terminal))"
           "\n\n"
           R"({"schemaVersion":3,"requestId":"r","source":"run_test","status":"passed",)"
           R"("terminal":true,"updatedAt":"2026-01-31T12:00:00Z","tests":[)" +
           tests + "]}";
  }
  static std::string test(const std::string& name, const std::string& status, int seconds) {
    return R"({"testId":"1","testName":")" + name + R"(","status":")" + status +
           R"(","durationSeconds":)" + std::to_string(seconds) + R"(,"steps":[]})";
  }

  ServerLog log;
  Interruption interruption;
  std::vector<std::string> lines;
  int ticks = 0;
};

const std::string described =
    "Corvane workspace context (updated x).\n\n"
    R"({"otherProjects":[],"project":{"name":"Shop","suites":[],"tests":[)"
    R"({"id":"a","name":"A","steps":[]}]}})";

// Fails when runs of other projects, or that go on, are looked at, or an older one counts.
TEST_F(ServerWatchTest, MeasuresByTheFewRunsThatTheServerTellsOf) {
  answer(described);
  answer(
      "Corvane status (appRunning: true).\n\n"
      R"({"appRunning":true,"recentRequests":[)"
      R"({"projectName":"Shop","requestId":"now","status":"running","terminal":false},)"
      R"({"projectName":"Other","requestId":"other","status":"passed","terminal":true},)"
      R"({"projectName":"Shop","requestId":"new","status":"failed","terminal":true},)"
      R"({"projectName":"Shop","requestId":"old","status":"passed","terminal":true},{}]})");
  answer(terminal(test("A", "failed", 4) + "," + test("B", "cancelled", 1)));
  answer(terminal(test("A", "passed", 9) + "," + test("B", "passed", 2)));
  std::optional<Expectation> found;
  const auto calls = watching(ServerWatch::Run{"Shop", {}, true},
                              [&](ServerWatch& watch) { found = watch.expectation(); });
  ASSERT_TRUE(found);
  EXPECT_EQ(found->plan.tests.at(0).name, "A");
  EXPECT_EQ(found->earlier, (TestDurations{{"A", 4}, {"B", 2}}));
  ASSERT_EQ(calls.size(), 4U);
  EXPECT_EQ(calls[2], readJson(R"({"name":"get_result","arguments":{"requestId":"new"}})"));
  EXPECT_EQ(calls[3], readJson(R"({"name":"get_result","arguments":{"requestId":"old"}})"));
}

// Fails when a pipe, in which nothing is measured, is paid for with calls.
TEST_F(ServerWatchTest, AsksForNoMoreThanIsWanted) {
  answer(described);
  const auto calls = watching(ServerWatch::Run{"Shop", {}},
                              [](ServerWatch& watch) { EXPECT_TRUE(watch.expectation()); });
  EXPECT_EQ(calls.size(), 1U);
  EXPECT_TRUE(watching(std::nullopt, [](ServerWatch& watch) {
                EXPECT_FALSE(watch.expectation());
              }).empty());
}

TEST_F(ServerWatchTest, IsToldWhetherTheAppRuns) {
  answer("Corvane status (appRunning: false).\n\nnote: x\n\n{}");
  answer("Corvane status (appRunning: true).\n\n{}");
  answer("Something else");
  (void)watching(std::nullopt, [](ServerWatch& watch) {
    EXPECT_FALSE(watch.appIsRunning());
    EXPECT_TRUE(watch.appIsRunning());
    EXPECT_TRUE(watch.appIsRunning());
  });
}

// Fails when the clock on the screen stands still while an answer is waited for.
TEST_F(ServerWatchTest, LetsTheViewTickWhileItWaits) {
  lines = {"expect tools/call", "delay 300", textResult(terminal(""))};
  (void)watching(std::nullopt, [this](ServerWatch& watch) {
    ticks = 0;
    EXPECT_TRUE(watch.look(Seconds(1)).isOver());
    EXPECT_GE(ticks, 3);
  });
}

}  // namespace
}  // namespace corvane::testing
