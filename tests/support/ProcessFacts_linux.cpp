#include "tests/support/ProcessFacts.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace corvane::testing {

namespace {

namespace fs = std::filesystem;

fs::path folderOf(pid_t process) {
  return fs::path("/proc") / std::to_string(process);
}

/// The number that `text` begins with; -1 when it begins with none.
long leadingNumber(std::string_view text) {
  long number = -1;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

std::vector<pid_t> allProcesses() {
  std::vector<pid_t> processes;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator("/proc", error)) {
    const long number = leadingNumber(entry.path().filename().native());
    if (number > 0) processes.push_back(static_cast<pid_t>(number));
  }
  return processes;
}

}  // namespace

std::string ProcessFacts::status(pid_t process, std::string_view name) {
  std::ifstream file(folderOf(process) / "status");
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with(std::string(name) + ":")) continue;
    const auto start = line.find_first_not_of(" \t", name.size() + 1);
    return start == std::string::npos ? "" : line.substr(start);
  }
  return "";
}

std::size_t ProcessFacts::threadCount(pid_t process) {
  return static_cast<std::size_t>(leadingNumber(status(process, "Threads")));
}

std::size_t ProcessFacts::residentKilobytes(pid_t process) {
  return static_cast<std::size_t>(leadingNumber(status(process, "VmRSS")));
}

std::vector<std::string> ProcessFacts::descriptors(pid_t process) {
  std::vector<std::pair<long, std::string>> found;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folderOf(process) / "fd", error)) {
    const std::string number = entry.path().filename();
    const fs::path target = fs::read_symlink(entry.path(), error);
    found.emplace_back(leadingNumber(number), number + " -> " + target.string());
  }
  std::sort(found.begin(), found.end());
  std::vector<std::string> texts;
  for (auto& [number, text] : found) texts.push_back(std::move(text));
  return texts;
}

bool ProcessFacts::isAlive(pid_t process) {
  const std::string state = status(process, "State");
  return !state.empty() && !state.starts_with("Z") && !state.starts_with("X");
}

std::vector<pid_t> ProcessFacts::children(pid_t process) {
  std::vector<pid_t> found;
  for (const pid_t candidate : allProcesses()) {
    if (leadingNumber(status(candidate, "PPid")) == process) found.push_back(candidate);
  }
  return found;
}

std::vector<pid_t> ProcessFacts::withCommandLine(std::initializer_list<std::string_view> texts) {
  std::vector<pid_t> found;
  for (const pid_t candidate : allProcesses()) {
    std::ostringstream arguments;
    arguments << std::ifstream(folderOf(candidate) / "cmdline").rdbuf();
    std::string line = std::move(arguments).str();
    std::replace(line.begin(), line.end(), '\0', ' ');
    const auto isInLine = [&line](auto text) { return line.find(text) != std::string::npos; };
    if (std::all_of(texts.begin(), texts.end(), isInLine)) found.push_back(candidate);
  }
  return found;
}

}  // namespace corvane::testing
