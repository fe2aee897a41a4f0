#include "bench/speed/Setting.h"

#include <cstdlib>

#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

std::string searchPath() {
  const char* path = std::getenv("PATH");
  return std::string("PATH=") + (path ? path : "/usr/bin:/bin");
}

}  // namespace

Contender::Command Setting::serverIn(const std::filesystem::path& home) const {
  auto environment = homeVariables(home);
  environment.insert(environment.end(), {searchPath(), "CORVANE_MCP_SUPPRESS_LAUNCH=1"});
  return {{server.string()}, std::move(environment)};
}

Contender::Command Setting::sdkServer() const {
  return nodeJob("sdk_server.mjs", {});
}

Contender::Command Setting::floorProgram() const {
  return {{floor.string()}, {searchPath()}};
}

Contender::Command Setting::loggingFloor() const {
  return {{floor.string(), "log"}, {searchPath()}};
}

Contender::Command Setting::foldersProgram(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), folders.string());
  return {std::move(arguments), {searchPath()}};
}

Contender::Command Setting::nodeJob(const std::string& program,
                                    std::vector<std::string> arguments) const {
  Contender::Command command{{node.string(), (peers / program).string()}, {searchPath()}};
  for (auto& argument : arguments) command.arguments.push_back(std::move(argument));
  return command;
}

}  // namespace corvane::testing
