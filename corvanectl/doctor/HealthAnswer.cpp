#include "corvanectl/doctor/HealthAnswer.h"

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvanectl/terminal/ShellWord.h"

namespace corvane::ctl {

namespace {

/// The path behind "  label:" on its line; nothing where there is none.
std::optional<std::filesystem::path> pathBehind(std::string_view label, std::string_view answer) {
  const std::size_t begin = answer.find("\n  " + std::string(label) + ":");
  if (begin == std::string_view::npos) return std::nullopt;
  std::string_view line = answer.substr(begin + 1);
  line = line.substr(0, line.find('\n'));
  const std::filesystem::path path = trimWhitespace(line.substr(line.find(':') + 1));
  return path.is_absolute() ? std::optional(path) : std::nullopt;
}

}  // namespace

std::string commandToStart(const HealthAnswer& places) {
  if (!places.app) return "ln -s /path/to/Corvane.app ~/Applications/";
  return shellWord(displayPath(*places.app / "Contents" / "MacOS" / "Corvane")) + " &";
}

HealthAnswer readHealth(std::string_view answer) {
  return {.app = pathBehind("Corvane.app", answer),
          .imports = pathBehind("AgentImports", answer),
          .requests = pathBehind("AgentRunRequests", answer),
          .results = pathBehind("AgentResults", answer),
          .log = pathBehind("MCP log file", answer)};
}

}  // namespace corvane::ctl
