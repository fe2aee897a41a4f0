#include <set>
#include <string>

#include "tests/faults/FaultTest.h"
#include "tests/support/ProcessFacts.h"

namespace corvane::testing {
namespace {

class LongPollsTest : public FaultTest {};

TEST_F(LongPollsTest, DoNotHoldUpAPing) {
  constexpr int pollCount = 500;
  constexpr int pingCount = 50;
  const std::string id = "0a1b2c3d-0000-4000-8000-00000000abcd";
  ServerProcess server(setup());
  for (int i = 0; i < pollCount; ++i) {
    server.sendLine(call(i, "get_result", R"({"requestId":")" + id + R"(","waitSeconds":240})"));
  }
  // Nothing but the replies to the pings may come while all those calls wait.
  for (int i = 0; i < pingCount; ++i) {
    server.sendLine(ping(10'000 + i));
    ASSERT_EQ(server.readLine(), pong(10'000 + i));
  }
  // Waiting costs neither a thread nor much memory for each call.
  EXPECT_LE(ProcessFacts::threadCount(server.id()), 8U);
  expectMemoryBelow(std::size_t{64} << 10, server);

  TestFiles::replace(paths.agentResultsDirectory() / (id + ".json"), R"({"status":"passed"})");
  std::set<std::int64_t> answered;
  for (int i = 0; i < pollCount; ++i) {
    const std::string reply = server.readLine();
    EXPECT_EQ(textOf(reply), "status: passed (terminal)\n\n{\"status\":\"passed\"}");
    answered.insert(*readJson(reply).findAs<std::int64_t>("id"));
  }
  EXPECT_EQ(answered.size(), static_cast<std::size_t>(pollCount));
  EXPECT_EQ(*answered.begin(), 0);
  EXPECT_EQ(*answered.rbegin(), pollCount - 1);
  server.closeInput();
  EXPECT_EQ(server.wait(), "exit 0");
}

TEST_F(LongPollsTest, AreFinishedWhenTheInputEnds) {
  constexpr int pollCount = 100;
  const std::string id = "0a1b2c3d-0000-4000-8000-00000000abcd";
  ServerProcess server(setup());
  for (int i = 0; i < pollCount; ++i) {
    server.sendLine(call(i, "get_result", R"({"requestId":")" + id + R"(","waitSeconds":240})"));
  }
  server.closeInput();
  TestFiles::replace(paths.agentResultsDirectory() / (id + ".json"), R"({"status":"passed"})");
  EXPECT_EQ(server.readToEnd().size(), static_cast<std::size_t>(pollCount));
  EXPECT_EQ(server.wait(), "exit 0");
}

}  // namespace
}  // namespace corvane::testing
