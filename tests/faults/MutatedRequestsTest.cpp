#include <algorithm>
#include <array>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "CorvaneCore/json/Codec.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "tests/faults/FaultTest.h"

namespace corvane::testing {
namespace {

using Lines = std::vector<std::string>;

constexpr std::array<std::string_view, 12> healthyRequests{
    R"({"jsonrpc":"2.0","id":1,"method":"ping"})",
    R"({"jsonrpc":"2.0","id":"two","method":"ping","params":{"a":[1,2.5,null,true,"ü\n"]}})",
    R"({"jsonrpc":"2.0","method":"notifications/initialized"})",
    R"({"jsonrpc":"2.0","id":3,"method":"initialize","params":{"protocolVersion":"2025-03-26","clientInfo":{"name":"x","version":"1"},"capabilities":{}}})",
    R"({"jsonrpc":"2.0","id":4,"method":"shutdown","params":null})",
    R"({"jsonrpc":"2.0","id":5,"method":"tools/call","params":{"name":"health"}})",
    R"({"jsonrpc":"2.0","id":6,"method":"tools/call","params":{"name":"run_test","arguments":{"projectName":"Shop","testNames":["Login","Out"],"params":{"u":"v"},"buildFirst":false}}})",
    R"({"jsonrpc":"2.0","id":7,"method":"tools/call","params":{"name":"run_test","arguments":{"projectName":"Shop","runAll":true},"_meta":{"progressToken":"t"}}})",
    R"({"jsonrpc":"2.0","id":8,"method":"tools/call","params":{"name":"get_result","arguments":{"requestId":"0a1b2c3d-0000-4000-8000-00000000abcd","includeStepTrace":true,"traceTestIndex":0}}})",
    R"({"jsonrpc":"2.0","id":9,"method":"tools/call","params":{"name":"cancel_run","arguments":{"requestId":"0a1b2c3d-0000-4000-8000-00000000abcd"}}})",
    R"({"jsonrpc":"2.0","id":10,"method":"tools/call","params":{"name":"nope","arguments":null}})",
    R"({"jsonrpc":"2.0","id":-11,"method":"no/such/method","params":[]})",
};

constexpr std::array<std::string_view, 30> fragments{"\"",          "\\",
                                                     "{",           "}",
                                                     "[",           "]",
                                                     ",",           ":",
                                                     "null",        "true",
                                                     "-",           "0",
                                                     "1e999",       "1e5",
                                                     ".5",          "\\u0000",
                                                     "\\ud800",     "\\udc00",
                                                     "\\u00e9",     "\xff",
                                                     "\xc3",        "\xef\xbb\xbf",
                                                     "\r",          "\n",
                                                     "\t",          "\x01",
                                                     " ",           "\"id\":null,",
                                                     "\"id\":1.0,", "\"jsonrpc\":7,"};

/// Damages texts in ways that depend on the seed alone.
class Mutator {
 public:
  explicit Mutator(unsigned seed) : random(seed) {}

  std::string mutate(std::string text) {
    for (std::size_t i = below(3) + 1; i > 0; --i) mutateOnce(text);
    return text;
  }
  /// A number from 0 up to and without `limit`, which is above 0.
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random() % limit); }

 private:
  void mutateOnce(std::string& text) {
    if (text.empty()) return;
    const std::size_t at = below(text.size());
    const std::size_t length = below(std::min<std::size_t>(text.size() - at, 12)) + 1;
    switch (below(7)) {
      case 0:
        text[at] = static_cast<char>(text[at] ^ (1 << below(8)));
        break;
      case 1:
        text[at] = static_cast<char>(below(256));
        break;
      case 2:
        text.erase(at, length);
        break;
      case 3:
        text.insert(at, text.substr(at, length));
        break;
      case 4:
        text.insert(at, fragments[below(fragments.size())]);
        break;
      case 5:
        text.replace(at, length, fragments[below(fragments.size())]);
        break;
      default:
        text.resize(at);
    }
  }

  std::mt19937 random;
};

/// The id that the reply to a line carries; nothing when there is to be no reply.
std::optional<std::string> expectedId(const std::string& line) {
  if (line.empty()) return std::nullopt;
  try {
    const auto request = decodeValue<JSONRPCRequest>(readJson(line));
    if (!request.id) return std::nullopt;
    return toJson(encodeValue(*request.id));
  } catch (const DecodeError&) {
    return "null";
  }
}

class MutatedRequestsTest : public FaultTest {};

TEST_F(MutatedRequestsTest, AreAnsweredOnceEach) {
  TestFiles::write(paths.agentResultsDirectory() / "0a1b2c3d-0000-4000-8000-00000000abcd.json",
                   R"({"status":"failed","message":"alert","tests":[{}]})");
  constexpr int count = 4000;
  Mutator mutator(20260131);
  std::string input;
  Lines expected;
  for (int i = 0; i < count; ++i) {
    const auto& healthy = healthyRequests[mutator.below(healthyRequests.size())];
    const std::string text = mutator.mutate(std::string(healthy)) + "\n";
    input += text;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      if (auto id = expectedId(line)) expected.push_back(std::move(*id));
    }
  }

  ServerProcess server(setup());
  server.send(input);
  server.sendLine(ping(123456));
  expected.emplace_back("123456");
  server.closeInput();
  Lines received;
  for (const auto& line : server.readToEnd()) {
    const AnyCodable reply = readJson(line);
    EXPECT_EQ(*reply.findAs<std::string>("jsonrpc"), "2.0");
    EXPECT_NE(reply.find("result") == nullptr, reply.find("error") == nullptr) << line;
    received.push_back(toJson(*reply.find("id")));
  }
  EXPECT_EQ(server.wait(), "exit 0");
  std::sort(expected.begin(), expected.end());
  std::sort(received.begin(), received.end());
  EXPECT_EQ(received, expected);
}

}  // namespace
}  // namespace corvane::testing
