#include "corvanectl/protocol/ServerLocation.h"

#include <unistd.h>

#include <algorithm>
#include <system_error>

#include "corvanectl/protocol/ProtocolError.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view serverName = "corvane-mcp";

bool isProgram(const fs::path& path) {
  std::error_code unseen;
  return fs::is_regular_file(path, unseen) && ::access(path.c_str(), X_OK) == 0;
}

}  // namespace

fs::path locateServer(const std::optional<fs::path>& given, const fs::path& ownPath,
                      std::string_view searchPath) {
  if (given) return *given;
  if (!ownPath.empty()) {
    if (fs::path beside = ownPath.parent_path() / serverName; isProgram(beside)) return beside;
  }
  while (!searchPath.empty()) {
    const std::string_view folder = searchPath.substr(0, searchPath.find(':'));
    searchPath.remove_prefix(std::min(folder.size() + 1, searchPath.size()));
    if (fs::path found = fs::path(folder) / serverName; !folder.empty() && isProgram(found)) {
      return found;
    }
  }
  throw ProtocolError(
      "there is no corvane-mcp beside this program or on the PATH; "
      "name it with --server");
}

}  // namespace corvane
