#include "corvane_mcp/server/MCPServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <latch>
#include <limits>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/Pipe.h"
#include "tests/support/Timeout.h"
#include "tests/support/ToolBench.h"
#include "tests/unit/server/FakeTool.h"

namespace corvane::testing {
namespace {

using Lines = std::vector<std::string>;

bool contains(const Lines& lines, std::string_view line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

/// A server with tools of the test's own.
class MCPServerTest : public ::testing::Test {
 protected:
  void add(std::string_view name, decltype(MCPTool::action) action) {
    registry.add(fakeTool(name, std::move(action)));
  }

  /// What the server sends when it gets this input, which then ends.
  Lines replies(std::string_view input, std::size_t limit = LineReader::longestLine) {
    Pipe in;
    Pipe out;
    writeAll(in.writing.get(), input);
    in.writing.close();
    {
      MessageWriter writer(std::move(out.writing));
      MCPServer server({registry, {"corvane-mcp", "0.2.0"}, bench.client, bench.logger, writer});
      LineReader reader(in.reading.get(), limit);
      server.run(reader);
    }
    Lines lines;
    std::istringstream stream(readToEnd(out.reading.get()));
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }

  ToolBench bench;
  ToolRegistry registry;
};

constexpr const char* callOfX =
    R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"x"}})"
    "\n";

TEST_F(MCPServerTest, SendsTheResultOfATool) {
  add("x", [](const ToolCall&) { return ToolsCallResult::failure("a/b"); });
  EXPECT_EQ(replies(callOfX),
            Lines{R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"a/b","type":"text"}],)"
                  R"("isError":true}})"});
}

TEST_F(MCPServerTest, SendsAProtocolErrorOfAToolUnchanged) {
  add("x", [](const ToolCall&) -> ToolsCallResult {
    throw JSONRPCError(-32602, "x requires arguments");
  });
  EXPECT_EQ(replies(callOfX),
            Lines{R"({"error":{"code":-32602,"message":"x requires arguments"},"id":1,)"
                  R"("jsonrpc":"2.0"})"});
}

TEST_F(MCPServerTest, TurnsAnythingElseIntoAnInternalError) {
  add("x",
      [](const ToolCall&) -> ToolsCallResult { throw std::runtime_error("the disk is on fire"); });
  EXPECT_EQ(replies(callOfX),
            Lines{R"({"error":{"code":-32603,"message":"the disk is on fire"},"id":1,)"
                  R"("jsonrpc":"2.0"})"});
  const auto log = bench.logged();
  EXPECT_NE(
      std::find(log.begin(), log.end(), "ERROR Unhandled error in tools/call: the disk is on fire"),
      log.end());
}

TEST_F(MCPServerTest, DoesNotAnswerNotificationsThatFail) {
  add("x", [](const ToolCall&) -> ToolsCallResult { throw std::runtime_error("broken"); });
  EXPECT_EQ(replies(R"({"jsonrpc":"2.0","method":"tools/call","params":{"name":"x"}})"
                    "\n"),
            Lines());
  const auto log = bench.logged();
  EXPECT_TRUE(contains(log, "ERROR Unhandled error in tools/call: broken"));
}

TEST_F(MCPServerTest, HandsArgumentsAndProgressToTheTool) {
  add("x", [](const ToolCall& call) {
    if (call.progress) call.progress->emit(1, std::nullopt, "m");
    return ToolsCallResult::success(call.arguments.value_or("none"));
  });
  EXPECT_EQ(replies(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"x",)"
                    R"("arguments":[1,1.5],"_meta":{"progressToken":"t"}}})"
                    "\n"),
            (Lines{R"({"jsonrpc":"2.0","method":"notifications\/progress","params":)"
                   R"({"message":"m","progress":1,"progressToken":"t"}})",
                   R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"[1,1.5]",)"
                   R"("type":"text"}],"isError":false}})"}));
  EXPECT_EQ(replies(callOfX),
            Lines{R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"none",)"
                  R"("type":"text"}],"isError":false}})"});
}

TEST_F(MCPServerTest, LogsAReplyThatHasNoJsonForm) {
  registry.add(fakeTool("x", MCPTool::Plain(),
                        AnyCodable::Object{{"n", std::numeric_limits<double>::infinity()}}));
  EXPECT_EQ(replies(R"({"jsonrpc":"2.0","id":1,"method":"tools/list"})"
                    "\n"
                    R"({"jsonrpc":"2.0","id":2,"method":"ping"})"
                    "\n"),
            Lines{R"({"id":2,"jsonrpc":"2.0","result":{}})"});
  const auto log = bench.logged();
  EXPECT_TRUE(std::any_of(log.begin(), log.end(), [](const auto& line) {
    return line.starts_with("ERROR Failed to encode response: ");
  }));
}

TEST_F(MCPServerTest, AnswersAnOverlongLineAndGoesOn) {
  EXPECT_EQ(
      replies(std::string(100, 'x') + "\n" + R"({"jsonrpc":"2.0","id":2,"method":"ping"})" + "\n",
              50),
      (Lines{R"({"error":{"code":-32700,"message":"the line is longer than 268435456 bytes"},)"
             R"("id":null,"jsonrpc":"2.0"})",
             R"({"id":2,"jsonrpc":"2.0","result":{}})"}));
}

TEST_F(MCPServerTest, RemembersWhoTheClientIs) {
  EXPECT_FALSE(bench.client.name());
  const auto initialize = [](std::string_view params) {
    return R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":)" + std::string(params) +
           "}\n";
  };
  replies(initialize(R"({"clientInfo":{"name":"first"}})"));
  EXPECT_EQ(bench.client.name(), "first");
  for (const char* params : {R"({})", R"({"clientInfo":{}})", R"({"clientInfo":{"name":null}})",
                             R"({"clientInfo":"x"})", R"(["clientInfo"])"}) {
    replies(initialize(params));
    EXPECT_EQ(bench.client.name(), "first") << params;
  }
  replies(initialize(R"({"clientInfo":{"name":""}})"));
  EXPECT_EQ(bench.client.name(), "");
}

// Fails when it says that it ends while a call goes on.
TEST_F(MCPServerTest, FinishesCallsWhenItsInputEnds) {
  add("x", [this](ToolCall) -> Task<ToolsCallResult> {
    co_await SystemClock().sleepFor(std::chrono::milliseconds(50));
    bench.logger.info("answering");
    co_return ToolsCallResult::success("late");
  });
  EXPECT_EQ(replies(callOfX),
            Lines{R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"late",)"
                  R"("type":"text"}],"isError":false}})"});
  const auto log = bench.logged();
  ASSERT_GE(log.size(), 3U);
  EXPECT_EQ(Lines(log.end() - 3, log.end()),
            (Lines{"INFO stdin closed; draining 1 in-flight tool call(s)", "INFO answering",
                   "INFO stdin closed; exiting"}));
}

/// A conversation with such a server while calls of its tools are going on.
class BusyServerTest : public MCPServerTest {
 protected:
  /// Answers once it is released.
  void addSlow(std::string_view name) {
    add(name, [this](const ToolCall&) {
      ++hanging;
      release.wait();
      return ToolsCallResult::success("slow");
    });
  }
  void start() {
    server = std::thread([this] {
      MessageWriter writer(std::move(out.writing));
      MCPServer running({registry, {"corvane-mcp", "0.2.0"}, bench.client, bench.logger, writer});
      LineReader reader(in.reading.get());
      running.run(reader);
    });
  }
  static std::string call(int id, std::string_view tool) {
    return R"({"jsonrpc":"2.0","id":)" + std::to_string(id) +
           R"(,"method":"tools/call","params":{"name":")" + std::string(tool) + "\"}}\n";
  }
  static std::string ping(int id) {
    return R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + R"(,"method":"ping"})" + "\n";
  }
  void send(std::string_view lines) { writeAll(in.writing.get(), lines); }
  /// The id of the next reply.
  std::int64_t nextReply() {
    std::string line;
    for (char next = 0; ::read(out.reading.get(), &next, 1) == 1 && next != '\n';) line += next;
    return *readJson(line).findAs<std::int64_t>("id");
  }
  /// Lets all calls come to their end.
  void finish() {
    release.count_down();
    in.writing.close();
    server.join();
  }

  Pipe in;
  Pipe out;
  std::latch release{1};
  std::atomic<int> hanging = 0;
  std::thread server;
};

// Fails when a call keeps the thread that reads, at first or when the other one is busy as well.
TEST_F(BusyServerTest, AnswersWhateverHangs) {
  addSlow("slow");
  add("quick", [](const ToolCall&) { return ToolsCallResult::success("quick"); });
  start();
  for (int i = 1; i <= 4; ++i) {
    send(call(100 + i, "slow"));
    waitUntil("the call hangs", [&] { return hanging == i; });
    send(call(i, "quick"));
    EXPECT_EQ(nextReply(), i);
    send(ping(10 + i));
    EXPECT_EQ(nextReply(), 10 + i);
  }
  // One for every thread there is, and more; those that have begun hang, the others wait.
  for (int i = 5; i <= 20; ++i) send(call(100 + i, "slow"));
  send(ping(1));
  EXPECT_EQ(nextReply(), 1);
  waitUntil("every thread hangs", [&] { return hanging == 6; });
  finish();
  EXPECT_TRUE(contains(bench.logged(), "INFO stdin closed; exiting"));
}

// Fails when calls that write requests run side by side, or are handed to the threads out of order.
TEST_F(BusyServerTest, WritesRequestsInTheOrderOfTheirCalls) {
  constexpr int count = 2000;
  std::vector<std::string> written;
  add("write", [&](const ToolCall& call, DispatchOrder::Turn& turn) {
    written.push_back(*call.arguments);
    turn.giveUp();
    return ToolsCallResult::success("written");
  });
  start();
  std::string lines;
  std::vector<std::string> expected;
  for (int i = 1; i <= count; ++i) {
    lines +=
        R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"write","arguments":)" +
        std::to_string(i) + "}}\n";
    expected.push_back(std::to_string(i));
  }
  std::thread sender([&] {
    for (std::string_view left = lines; !left.empty();) {
      const ssize_t sent = ::write(in.writing.get(), left.data(), left.size());
      left.remove_prefix(static_cast<std::size_t>(sent));
    }
  });
  for (int i = 0; i < count; ++i) EXPECT_EQ(nextReply(), 1);
  sender.join();
  finish();
  EXPECT_EQ(written, expected);
}

// Fails when the turn to write lasts until the client has read the reply.
TEST_F(BusyServerTest, WritesOnWhileTheClientDoesNotRead) {
  add("large", [](const ToolCall&, DispatchOrder::Turn&) {
    return ToolsCallResult::success(std::string(std::size_t{100} << 10, 'x'));
  });
  std::atomic<bool> written = false;
  add("write", [&](const ToolCall&, DispatchOrder::Turn&) {
    written = true;
    return ToolsCallResult::success("");
  });
  start();
  send(call(1, "large") + call(2, "large") + call(3, "large") + call(4, "large") +
       call(5, "write"));
  waitUntil("the last has written", [&] { return written.load(); });
  std::set<std::int64_t> replied;
  for (int i = 0; i < 5; ++i) replied.insert(nextReply());
  EXPECT_EQ(replied, (std::set<std::int64_t>{1, 2, 3, 4, 5}));
  finish();
}

// Fails when others wait for a call that has not written yet, or the next writer for one that has.
TEST_F(BusyServerTest, HoldsUpNobodyButThoseWhoWriteLater) {
  add("stuck", [this](const ToolCall&, DispatchOrder::Turn&) {
    ++hanging;
    release.wait();
    return ToolsCallResult::success("stuck");
  });
  std::latch launched(1);
  add("launches", [&](const ToolCall&, DispatchOrder::Turn& turn) {
    turn.giveUp();
    ++hanging;
    launched.wait();
    return ToolsCallResult::success("launched");
  });
  add("write", [](const ToolCall&, DispatchOrder::Turn&) { return ToolsCallResult::success(""); });
  add("read", [](const ToolCall&) { return ToolsCallResult::success(""); });
  start();
  send(call(1, "launches"));
  waitUntil("the first has written", [&] { return hanging == 1; });
  send(call(2, "write"));
  EXPECT_EQ(nextReply(), 2);
  launched.count_down();
  EXPECT_EQ(nextReply(), 1);
  send(call(3, "stuck") + call(4, "write") + call(5, "read") + ping(6));
  std::set<std::int64_t> replied{nextReply(), nextReply()};
  EXPECT_EQ(replied, (std::set<std::int64_t>{5, 6}));
  in.writing.close();
  waitUntil("the end is seen", [&] {
    const auto log = TestFiles::lines(bench.paths.logFile());
    return !log.empty() &&
           log.back().ends_with("[INFO] stdin closed; draining 2 in-flight tool call(s)");
  });
  release.count_down();
  replied = {nextReply(), nextReply()};
  EXPECT_EQ(replied, (std::set<std::int64_t>{3, 4}));
  server.join();
}

}  // namespace
}  // namespace corvane::testing
