#include "corvane_standin/program/Environment.h"

#include <fcntl.h>

#include <string>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

int openForAppending(const std::filesystem::path& path) {
  constexpr std::uintmax_t largestLog = 1 << 20;
  const auto stamp = readStamp(path);
  const int startAnew = stamp && stamp->size > largestLog ? O_TRUNC : 0;
  return ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | startAnew,
                fileMode(Access::userOnly));
}

}  // namespace

StandInLog::StandInLog(const std::filesystem::path& path, const Clock& clock)
    : clock(clock), file(openForAppending(path)) {}

void StandInLog::line(std::string_view level, std::string_view message) const {
  std::string text = "[" + formatDate(clock.date()) + "] [";
  text.append(level).append("] ").append(escapeControls(toValidUtf8(message))).append("\n");
  [[maybe_unused]] const ssize_t ignored = ::write(file.get(), text.data(), text.size());
}

}  // namespace corvane::standin
