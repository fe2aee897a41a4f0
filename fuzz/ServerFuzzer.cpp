#include <fcntl.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "CorvaneCore/json/AgentWire.h"
#include "corvane_mcp/server/MCPServer.h"
#include "corvane_mcp/tools/Tools.h"
#include "fuzz/Require.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"

namespace {

using namespace corvane;
using namespace corvane::testing;

/// A clock on which every wait is over at once, for calls on several threads.
class HastyClock final : public Clock {
 public:
  [[nodiscard]] FileTime now() const override { return FileTime(passed.load()); }
  [[nodiscard]] Elapsed elapsed() const override { return Elapsed(passed.load()); }
  [[nodiscard]] Task<void> sleepFor(std::chrono::milliseconds duration) const override {
    passed = passed.load() + duration;
    co_return;
  }

 private:
  mutable std::atomic<std::chrono::nanoseconds> passed{std::chrono::hours(500'000)};
};

/// What an app that lived here left behind.
void furnish(const AgentPaths& paths) {
  const auto result = [&paths](char digit, std::string_view text) {
    const std::string name = std::string(8, digit) + "-0000-4000-8000-00000000abcd.json";
    TestFiles::write(paths.agentResultsDirectory() / name, text);
  };
  result('1',
         R"({"status":"failed","message":"an alert","tests":[{}],"trace":{"artifactsDir":"/"}})");
  result('2', R"({"status":"running","progress":{"currentStep":1,"totalSteps":2}})");
  result('3', "{");
  TestFiles::write(
      paths.agentContextFile(),
      R"({"projects":[{"name":"Shop","suites":[{"name":"S","testIds":["t"]}],"tests":[{"id":"t",)"
      R"("name":"Log in","steps":[{"type":"tap","description":"'Go'"}]}]}],"schemaVersion":1,)"
      R"("updatedAt":"2026-01-31T12:00:00Z","userDefinedInteractions":[]})");
  TestFiles::write(paths.agentActivityFile(),
                   R"({"active":{"kind":"run","requestId":"r","startedAt":"2026-01-31T12:00:02Z"},)"
                   R"("authoringActive":false,"queued":[],"schedulerBusy":false,"schemaVersion":1,)"
                   R"("updatedAt":"2026-01-31T12:00:20Z"})");
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// What a server in a home of its own writes when it reads `input`.
std::string serve(std::string_view input) {
  const TemporaryHome home;
  const AgentPaths paths = home.paths();
  furnish(paths);
  TestFiles::write(home.path() / "input", input);
  const auto output = home.path() / "output";
  {
    Logger logger(paths.logFile());
    const CorvaneLauncher launcher({{}, home.path(), home.path() / "SystemApplications"}, logger);
    ClientIdentity client;
    const HastyClock clock;
    ToolRegistry registry;
    registerTools(registry, {paths, launcher, client, clock, logger});
    MessageWriter writer(
        FileDescriptor(::open(output.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)));
    MCPServer server({registry, {"corvane-mcp", "0.2.0"}, client, logger, writer});
    const FileDescriptor file(::open((home.path() / "input").c_str(), O_RDONLY | O_CLOEXEC));
    LineReader reader(file.get());
    server.run(reader);
  }
  return TestFiles::read(output);
}

/// What the lines of an input ask for.
struct Expected {
  std::vector<std::string> ids;
  std::vector<AnyCodable> tokens;

  explicit Expected(std::string_view input) {
    // What stands behind the last line feed is no line.
    for (const auto& line : linesOf(std::string(input.substr(0, input.rfind('\n') + 1)))) {
      if (!line.empty()) add(line);
    }
  }

 private:
  void add(const std::string& line) {
    try {
      const auto request = decodeValue<JSONRPCRequest>(readJson(line));
      if (request.id) ids.push_back(toJson(encodeValue(*request.id)));
      const auto* meta = request.params ? request.params->find("_meta") : nullptr;
      const auto* token = meta ? meta->find("progressToken") : nullptr;
      if (token) tokens.push_back(*token);
    } catch (const DecodeError&) {
      ids.emplace_back("null");
    }
  }
};

void checkError(const JSONRPCError& error, const JSONRPCID& id) {
  // Nothing is in the way of the server here, so no error is an internal one.
  require(error.code == JSONRPCError::parseError || error.code == JSONRPCError::methodNotFound ||
              error.code == JSONRPCError::invalidParams,
          "an error has one of the codes for bad requests");
  require((error.code == JSONRPCError::parseError) == (id == JSONRPCID()),
          "what could not be read has no id, and everything else has one");
}

void checkNotification(const AnyCodable& message, const Expected& expected) {
  require(message.find("method")->string() &&
              *message.find("method")->string() == "notifications/progress",
          "the only notification is progress");
  const auto* token = message.find("params")->find("progressToken");
  require(token && std::find(expected.tokens.begin(), expected.tokens.end(), *token) !=
                       expected.tokens.end(),
          "progress goes to who asked for it");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  ::setenv("CORVANE_MCP_SUPPRESS_LAUNCH", "1", 1);
  return 0;
}

/// The input is what a client sends.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string output = serve(input);
  Expected expected(input);
  require(output.empty() || output.ends_with('\n'), "messages end with a line feed");
  std::vector<std::string> answered;
  for (const auto& line : linesOf(output)) {
    const AnyCodable message = readJson(line);
    if (message.find("method")) {
      checkNotification(message, expected);
      continue;
    }
    const auto reply = decodeValue<JSONRPCResponse>(message);
    require(AgentWire::encode(reply) == line && reply.jsonrpc == "2.0", "a reply is nothing more");
    require(reply.result.has_value() != reply.error.has_value(), "a reply is a result or an error");
    if (reply.error) checkError(*reply.error, reply.id);
    answered.push_back(toJson(encodeValue(reply.id)));
  }
  std::sort(answered.begin(), answered.end());
  std::sort(expected.ids.begin(), expected.ids.end());
  require(answered == expected.ids, "every request is answered once, and nothing else is");
  return 0;
}
