#include <string>

#include "tests/faults/FaultTest.h"

namespace corvane::testing {
namespace {

constexpr std::size_t huge = std::size_t{32} << 20;

std::string nested(std::size_t depth, std::string_view opening, std::string_view closing) {
  std::string text;
  text.reserve(depth * (opening.size() + closing.size()));
  for (std::size_t i = 0; i < depth; ++i) text += opening;
  for (std::size_t i = 0; i < depth; ++i) text += closing;
  return text;
}

class HugeMessagesTest : public FaultTest {
 protected:
  /// The reply to a ping with these params.
  std::string pinged(const std::string& params) {
    server.sendLine(R"({"jsonrpc":"2.0","id":1,"method":"ping","params":)" + params + "}");
    return server.readLine();
  }

  void expectHealthy() {
    server.sendLine(ping(2));
    EXPECT_EQ(server.readLine(), pong(2));
    server.closeInput();
    EXPECT_EQ(server.wait(), "exit 0");
  }

  ServerProcess server{setup()};
};

TEST_F(HugeMessagesTest, AreReadWhole) {
  EXPECT_EQ(pinged('"' + std::string(huge, 'x') + '"'), pong(1));
  server.sendLine(std::string(huge, 'x'));
  EXPECT_EQ(errorOf(server.readLine()), "not valid JSON: unexpected text at byte 0");
  server.sendLine(call(3, "health", "[\"" + std::string(huge, 'y') + "\"]"));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("corvane-mcp is healthy."));
  // What they needed is used again or given back, however many come.
  EXPECT_EQ(pinged('"' + std::string(huge, 'x') + '"'), pong(1));
  expectMemoryBelow(std::size_t{160} << 10, server);
  expectHealthy();
}

/// What one huge message needed is given back with the next small one. The C library keeps some of
/// a second one's, so there is a server for each.
class HugeMessageTest : public HugeMessagesTest {
 protected:
  void expectMemoryGivenBackAfter(const std::string& params) {
    EXPECT_EQ(pinged(params), pong(1));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(pinged("[]"), pong(1));
    expectMemoryBelow(std::size_t{16} << 10, server);
    expectHealthy();
  }
};

// Fails when the reader of lines keeps its buffer.
TEST_F(HugeMessageTest, LeavesNoMemoryBehindForItsLine) {
  expectMemoryGivenBackAfter('"' + std::string(huge, 'x') + '"');
}

// Fails when the finder of tokens keeps its list.
TEST_F(HugeMessageTest, LeavesNoMemoryBehindForItsTokens) {
  // Under a sanitizer, where nothing is measured, fewer do.
  const int count = shippedServer ? 2'000'000 : 200'000;
  std::string zeros = "[0";
  for (int i = 0; i < count; ++i) zeros += ",0";
  expectMemoryGivenBackAfter(zeros + "]");
}

TEST_F(HugeMessagesTest, AreAnsweredInFull) {
  const std::string name(std::size_t{3} << 20, 'm');
  server.sendLine(R"({"jsonrpc":"2.0","id":1,"method":")" + name + "\"}");
  EXPECT_TRUE(errorOf(server.readLine()) == "Method not found: " + name);
  server.sendLine(call(2, "run_test", R"({"projectName":")" + name + R"(","runAll":true})"));
  EXPECT_NE(textOf(server.readLine()).find("\n  Project:     " + name + "\n"), std::string::npos);
  expectHealthy();
}

TEST_F(HugeMessagesTest, MayNestAHundredThousandLevels) {
  EXPECT_EQ(pinged(nested(100'000, "[", "]")), pong(1));
  EXPECT_EQ(pinged(nested(100'000, "{\"a\":[", "]}")), pong(1));
  server.sendLine(call(3, "run_test", nested(100'000, "[", "]")));
  EXPECT_EQ(errorOf(server.readLine()), "run_test requires arguments");
  expectHealthy();
}

TEST_F(HugeMessagesTest, ComeBackFromAnyDepth) {
  const std::string id = "0a1b2c3d-0000-4000-8000-00000000abcd";
  TestFiles::write(paths.agentResultsDirectory() / (id + ".json"), R"({"status":"running"})");
  const std::string token = nested(100'000, "[", "]");
  server.sendLine(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"get_result",)"
                  R"("arguments":{"requestId":")" +
                  id + R"("},"_meta":{"progressToken":)" + token + "}}}");
  EXPECT_TRUE(
      server.readLine() ==
      R"({"jsonrpc":"2.0","method":"notifications\/progress","params":{"message":"running",)"
      R"("progress":1,"progressToken":)" +
          token + "}}");
  EXPECT_TRUE(textOf(server.readLine()).starts_with("status: running (NOT terminal"));
  expectHealthy();
}

TEST_F(HugeMessagesTest, MayNestAMillionLevels) {
  EXPECT_EQ(pinged(nested(1'000'000, "[", "]")), pong(1));
  expectHealthy();
}

TEST_F(HugeMessagesTest, AreRefusedWhenTheyDoNotClose) {
  server.sendLine(std::string(100'000, '['));
  EXPECT_TRUE(errorOf(server.readLine()).starts_with("not valid JSON"));
  server.sendLine(std::string(100'000, ']'));
  EXPECT_TRUE(errorOf(server.readLine()).starts_with("not valid JSON"));
  server.sendLine("\"" + std::string(100'000, '\\'));
  EXPECT_TRUE(errorOf(server.readLine()).starts_with("not valid JSON"));
  expectHealthy();
}

}  // namespace
}  // namespace corvane::testing
