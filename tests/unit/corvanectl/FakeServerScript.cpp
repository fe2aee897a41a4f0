#include "FakeServerScript.h"

#include <signal.h>
#include <stdlib.h>

#include <cerrno>
#include <fstream>

#include "CorvaneCore/json/JsonWriter.h"

namespace corvane::testing {

FakeServerScript::FakeServerScript(const std::vector<std::string>& lines) {
  std::ofstream script(directory.path() / "script");
  for (const auto& line : lines) script << line << '\n';
  ::setenv("CORVANECTL_FAKE_SCRIPT", (directory.path() / "script").c_str(), 1);
  ::setenv("CORVANECTL_FAKE_RECORD", (directory.path() / "record").c_str(), 1);
}

std::vector<std::string> FakeServerScript::received() const {
  std::vector<std::string> lines = record();
  if (!lines.empty()) lines.erase(lines.begin());
  return lines;
}

bool FakeServerScript::serverIsGone() const {
  const auto lines = record();
  return !lines.empty() && ::kill(std::stoi(lines.front()), 0) != 0 && errno == ESRCH;
}

std::vector<std::string> FakeServerScript::record() const {
  std::ifstream file(directory.path() / "record");
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> greeted(std::vector<std::string> lines) {
  std::vector<std::string> script{
      "expect initialize",
      R"(result {"capabilities":{"tools":{"listChanged":false}},"protocolVersion":"2025-03-26",)"
      R"("serverInfo":{"name":"fake","version":"1"}})",
      "expect notifications/initialized"};
  script.insert(script.end(), lines.begin(), lines.end());
  return script;
}

std::string textResult(std::string_view text, bool isError) {
  const AnyCodable block(AnyCodable::Object{{"type", "text"}, {"text", text}});
  return "result " +
         toJson(AnyCodable::Object{{"content", AnyCodable::Array{block}}, {"isError", isError}});
}

std::vector<std::string> finishedResult(std::string_view status, std::string_view json) {
  return {"expect tools/call",
          textResult("status: " + std::string(status) + " (terminal)\n\n" + std::string(json))};
}

}  // namespace corvane::testing
