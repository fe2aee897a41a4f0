#include <mach-o/dyld.h>

#include <cstdint>
#include <string>

#include "corvanectl/system/ChildProcess.h"

namespace corvane::ctl {

std::filesystem::path executablePath() {
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);
  std::string path(size, '\0');
  if (_NSGetExecutablePath(path.data(), &size) != 0) return {};
  std::error_code unknown;
  return std::filesystem::canonical(path.c_str(), unknown);
}

}  // namespace corvane::ctl
