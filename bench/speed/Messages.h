#pragma once

#include <string>
#include <string_view>

namespace corvane::testing {

/// Requests as lines, each with its line feed.
namespace Messages {

[[nodiscard]] inline std::string ping(std::size_t id) {
  return R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + "," + R"("method":"ping"})" + "\n";
}

/// `count` pings, one after the other.
[[nodiscard]] inline std::string pings(std::size_t count) {
  std::string lines;
  for (std::size_t id = 1; id <= count; ++id) lines += ping(id);
  return lines;
}

/// A call of a tool with arguments given as JSON.
[[nodiscard]] inline std::string call(std::size_t id, std::string_view tool,
                                      std::string_view arguments) {
  std::string line = R"({"jsonrpc":"2.0","id":)" + std::to_string(id);
  line.append(R"(,"method":"tools/call","params":{"name":")").append(tool);
  return line.append(R"(","arguments":)").append(arguments).append("}}\n");
}

}  // namespace Messages

}  // namespace corvane::testing
