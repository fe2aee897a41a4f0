#pragma once

#include <sys/types.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::testing {

/// What the system tells about a process.
namespace ProcessFacts {

/// The value of a line of the process's status, e.g. "SigBlk"; empty when the process is gone. Only
/// Linux has such lines.
[[nodiscard]] std::string status(pid_t process, std::string_view name);
[[nodiscard]] std::size_t threadCount(pid_t process);
/// Memory in use, in KiB.
[[nodiscard]] std::size_t residentKilobytes(pid_t process);
/// What its open descriptors lead to, as "0 -> /dev/null", in the order of their numbers.
[[nodiscard]] std::vector<std::string> descriptors(pid_t process);
/// Whether it runs: one that has ended but has not been waited for does not.
[[nodiscard]] bool isAlive(pid_t process);
/// The processes that have `process` as their parent, dead ones that wait to be reaped included.
[[nodiscard]] std::vector<pid_t> children(pid_t process);
/// The processes whose command line, arguments joined with blanks, contains every one of `texts`.
[[nodiscard]] std::vector<pid_t> withCommandLine(std::initializer_list<std::string_view> texts);

}  // namespace ProcessFacts

}  // namespace corvane::testing
