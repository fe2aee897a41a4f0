#include <fcntl.h>
#include <libproc.h>
#include <sys/proc_info.h>
#include <sys/sysctl.h>

#include <algorithm>
#include <array>
#include <optional>

#include "tests/support/ProcessArguments.h"
#include "tests/support/ProcessFacts.h"

namespace corvane::testing {

namespace {

std::vector<pid_t> allProcesses() {
  // Room for those that are born meanwhile.
  constexpr int spare = 100;
  std::vector<pid_t> processes(static_cast<std::size_t>(::proc_listallpids(nullptr, 0) + spare));
  const int count =
      ::proc_listallpids(processes.data(), static_cast<int>(processes.size() * sizeof(pid_t)));
  processes.resize(static_cast<std::size_t>(std::max(count, 0)));
  return processes;
}

std::optional<proc_bsdinfo> infoOf(pid_t process) {
  proc_bsdinfo info{};
  const int size = ::proc_pidinfo(process, PROC_PIDTBSDINFO, 1, &info, sizeof info);
  return size == sizeof info ? std::optional(info) : std::nullopt;
}

proc_taskinfo taskOf(pid_t process) {
  proc_taskinfo info{};
  ::proc_pidinfo(process, PROC_PIDTASKINFO, 0, &info, sizeof info);
  return info;
}

/// Empty when the process is gone or not ours to see.
std::string commandLine(pid_t process) {
  std::array<int, 3> name{CTL_KERN, KERN_PROCARGS2, process};
  std::string bytes(static_cast<std::size_t>(ARG_MAX), '\0');
  std::size_t size = bytes.size();
  if (::sysctl(name.data(), name.size(), bytes.data(), &size, nullptr, 0) != 0) return "";
  return joinedArguments(std::string_view(bytes).substr(0, size));
}

std::string pathOf(pid_t process, int descriptor) {
  vnode_fdinfowithpath info{};
  const int size =
      ::proc_pidfdinfo(process, descriptor, PROC_PIDFDVNODEPATHINFO, &info, sizeof info);
  return size == sizeof info ? info.pvip.vip_path : "no file";
}

}  // namespace

std::size_t ProcessFacts::threadCount(pid_t process) {
  return static_cast<std::size_t>(taskOf(process).pti_threadnum);
}

std::size_t ProcessFacts::residentKilobytes(pid_t process) {
  return taskOf(process).pti_resident_size / 1024;
}

std::vector<std::string> ProcessFacts::descriptors(pid_t process) {
  std::vector<proc_fdinfo> found(4096);
  const int size = ::proc_pidinfo(process, PROC_PIDLISTFDS, 0, found.data(),
                                  static_cast<int>(found.size() * sizeof(proc_fdinfo)));
  found.resize(static_cast<std::size_t>(std::max(size, 0)) / sizeof(proc_fdinfo));
  std::ranges::sort(found, {}, &proc_fdinfo::proc_fd);
  std::vector<std::string> texts;
  for (const auto& each : found) {
    texts.push_back(std::to_string(each.proc_fd) + " -> " + pathOf(process, each.proc_fd));
  }
  return texts;
}

bool ProcessFacts::isAlive(pid_t process) {
  const auto info = infoOf(process);
  return info && info->pbi_status != SZOMB;
}

std::vector<pid_t> ProcessFacts::children(pid_t process) {
  std::vector<pid_t> found;
  for (const pid_t candidate : allProcesses()) {
    const auto info = infoOf(candidate);
    if (info && info->pbi_ppid == static_cast<std::uint32_t>(process)) found.push_back(candidate);
  }
  return found;
}

std::vector<pid_t> ProcessFacts::withCommandLine(std::initializer_list<std::string_view> texts) {
  std::vector<pid_t> found;
  for (const pid_t candidate : allProcesses()) {
    const std::string line = commandLine(candidate);
    const auto isInLine = [&line](auto text) { return line.find(text) != std::string::npos; };
    if (std::all_of(texts.begin(), texts.end(), isInLine)) found.push_back(candidate);
  }
  return found;
}

}  // namespace corvane::testing
