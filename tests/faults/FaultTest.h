#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/json/JsonReader.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/ServerProcess.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"

namespace corvane::testing {

/// The server of another build, as it is shipped, to test in the place of the one that was built
/// with these tests.
inline const char* const shippedServer = std::getenv("CORVANE_SHIPPED_SERVER");

/// Bad input and bad luck for the real server, in a private home.
class FaultTest : public ::testing::Test {
 protected:
  [[nodiscard]] static std::filesystem::path program() {
    return shippedServer ? shippedServer : CORVANE_MCP_PROGRAM;
  }
  [[nodiscard]] ServerProcess::Setup setup() const { return {program(), home.path()}; }

  [[nodiscard]] static std::string ping(int id) {
    return R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + R"(,"method":"ping"})";
  }
  [[nodiscard]] static std::string pong(int id) {
    return R"({"id":)" + std::to_string(id) + R"(,"jsonrpc":"2.0","result":{}})";
  }
  /// A call of a tool; `arguments` is JSON.
  [[nodiscard]] static std::string call(int id, std::string_view tool, std::string_view arguments) {
    return R"({"jsonrpc":"2.0","id":)" + std::to_string(id) +
           R"(,"method":"tools/call","params":{"name":")" + std::string(tool) +
           R"(","arguments":)" + std::string(arguments) + "}}";
  }
  static constexpr std::string_view anyRun = R"({"projectName":"Shop","runAll":true})";
  static constexpr std::string_view anyPayload =
      R"({"projectName":"Shop","testName":"Look","buildFirst":false,)"
      R"("bundleIdentifier":"com.example.shop","interactions":[)"
      R"({"type":"builtIn","description":"","parameters":{"command":"terminateApplication"}},)"
      R"({"type":"builtIn","description":"{{APP_NAME}}",)"
      R"("parameters":{"command":"openApplication"}},)"
      R"({"type":"builtIn","description":"","parameters":{"command":"terminateApplication"}}]})";

  /// The text of a reply's first block.
  [[nodiscard]] static std::string textOf(std::string_view reply) {
    const AnyCodable message = readJson(reply);
    const auto* result = message.find("result");
    const auto* content = result ? result->findAs<AnyCodable::Array>("content") : nullptr;
    return content ? *content->at(0).findAs<std::string>("text")
                   : "no text in " + std::string(reply);
  }
  /// The message of an error reply.
  [[nodiscard]] static std::string errorOf(std::string_view reply) {
    const AnyCodable message = readJson(reply);
    const auto* error = message.find("error");
    return error ? *error->findAs<std::string>("message") : "no error in " + std::string(reply);
  }

  /// Expects a shipped server to use less memory than this; a sanitizer takes memory of its own.
  static void expectMemoryBelow(std::size_t kilobytes, const ServerProcess& server) {
    if (shippedServer) {
      EXPECT_LT(ProcessFacts::residentKilobytes(server.id()), kilobytes);
    }
  }

  [[nodiscard]] std::size_t requestFiles() const {
    return listVisible(paths.agentRunRequestsDirectory()).size();
  }

  const TemporaryHome home;
  const AgentPaths paths = home.programPaths();
};

}  // namespace corvane::testing
