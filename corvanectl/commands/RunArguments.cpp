#include "corvanectl/commands/RunArguments.h"

#include "CorvaneCore/text/Unicode.h"
#include "CorvaneCore/text/Uuid.h"

namespace corvane {

AnyCodable::Object runArguments(const RunCommand& command) {
  AnyCodable::Object arguments{{"projectName", command.project}};
  if (!command.tests.empty()) arguments.set("testNames", command.tests);
  if (command.suite) arguments.set("suiteName", *command.suite);
  if (command.all) arguments.set("runAll", true);
  AnyCodable::Object params;
  for (const auto& [name, value] : command.params) params.set(name, value);
  if (!params.empty()) arguments.set("params", std::move(params));
  if (command.build) arguments.set("buildFirst", *command.build);
  if (command.platform) arguments.set("targetPlatform", *command.platform);
  if (command.udid) arguments.set("simulatorUDID", *command.udid);
  return arguments;
}

std::optional<std::string> dispatchedRequestId(std::string_view answer) {
  constexpr std::string_view label = "requestId:";
  const std::size_t begin = answer.find(label);
  if (begin == std::string_view::npos) return std::nullopt;
  const std::string_view line = answer.substr(begin + label.size());
  return parseRequestId(trimWhitespace(line.substr(0, line.find('\n'))));
}

}  // namespace corvane
