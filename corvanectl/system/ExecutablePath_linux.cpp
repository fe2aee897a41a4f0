#include "corvanectl/system/ChildProcess.h"

namespace corvane::ctl {

std::filesystem::path executablePath() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown);
}

}  // namespace corvane::ctl
