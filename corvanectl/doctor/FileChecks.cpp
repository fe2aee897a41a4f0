#include "corvanectl/doctor/FileChecks.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <optional>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/text/Uuid.h"
#include "corvanectl/terminal/DisplayText.h"
#include "corvanectl/terminal/ShellWord.h"

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;

std::string quotedPath(const fs::path& path) {
  return shellWord(displayPath(path));
}

/// What is wrong with a folder and how it is mended; nothing when it is well or not there yet.
std::optional<Finding> faultOf(const fs::path& folder) {
  constexpr auto check = "folders";
  struct stat status{};
  if (::stat(folder.c_str(), &status) != 0) {
    if (errno == ENOENT) return std::nullopt;
    return wrong(check, displayPath(folder) + ": " + std::strerror(errno),
                 "ls -ld " + quotedPath(folder));
  }
  if (!S_ISDIR(status.st_mode)) {
    return wrong(check, displayPath(folder) + " is no folder",
                 "mv " + quotedPath(folder) + " " + quotedPath(folder.native() + ".old"));
  }
  if (status.st_uid != ::getuid()) {
    return wrong(check, displayPath(folder) + " belongs to another user",
                 "sudo chown -R \"$USER\" " + quotedPath(folder));
  }
  if (::access(folder.c_str(), R_OK | W_OK | X_OK) != 0) {
    return wrong(check, displayPath(folder) + " cannot be written: " + std::strerror(errno),
                 "chmod 700 " + quotedPath(folder));
  }
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    return wrong(check, displayPath(folder) + " is open to other users",
                 "chmod 700 " + quotedPath(folder));
  }
  return std::nullopt;
}

/// The request that a file in a drop folder is named for; the name itself where it is no id.
std::string requestIn(const fs::path& file) {
  const std::string name = file.filename();
  return name.substr(0, name.find('.'));
}

}  // namespace

Findings checkFolders(const HealthAnswer& places) {
  Findings findings;
  std::size_t looked = 0;
  for (const auto& folder :
       {places.imports, places.requests, places.results,
        places.log ? std::optional(places.log->parent_path()) : std::nullopt}) {
    if (!folder) continue;
    ++looked;
    if (auto fault = faultOf(*folder)) findings.push_back(std::move(*fault));
  }
  if (looked == 0) {
    return {
        wrong("folders", "the server's answer to health names no folders", "corvanectl health")};
  }
  if (findings.empty()) {
    findings.push_back(
        well("folders", "The shared folders and the log's can be written, by you alone"));
  }
  return findings;
}

Finding checkWaitingRequests(const HealthAnswer& places) {
  constexpr auto check = "requests";
  constexpr std::chrono::seconds patience{60};
  const auto now = std::chrono::system_clock::now();
  std::vector<std::string> waiting;
  std::chrono::seconds longest{0};
  for (const auto& folder : {places.imports, places.requests}) {
    if (!folder) continue;
    for (const fs::path& file : listVisible(*folder)) {
      const auto stamp = readStamp(file);
      if (!stamp || !stamp->modifiedAt) continue;
      const auto age = std::chrono::duration_cast<std::chrono::seconds>(now - *stamp->modifiedAt);
      if (age < patience) continue;
      waiting.push_back(requestIn(file));
      longest = std::max(longest, age);
    }
  }
  if (waiting.empty())
    return well(check, "No request has been waiting for over a minute to be picked up");
  const std::string id = waiting.front();
  return wrong(
      check,
      std::to_string(waiting.size()) + (waiting.size() == 1 ? " request waits" : " requests wait") +
          " to be picked up, for up to " + displaySeconds(static_cast<double>(longest.count())) +
          ": " + oneLine(id) + (waiting.size() == 1 ? "" : ", ..."),
      commandToStart(places) +
          (parseRequestId(id) ? " or: corvanectl cancel " + id : std::string()));
}

Finding checkLog(const HealthAnswer& places) {
  constexpr auto check = "log";
  // The server begins a fresh file once this one is larger than half of this.
  constexpr std::uintmax_t surelyRotated = std::uintmax_t{2} << 20;
  if (!places.log)
    return wrong(check, "the server's answer to health names no log file", "corvanectl health");
  const auto stamp = readStamp(*places.log);
  if (!stamp) return well(check, "The log has not been begun");
  if (fs::is_directory(*places.log)) {
    return wrong(check, displayPath(*places.log) + " is a folder, so nothing is logged",
                 "rmdir " + quotedPath(*places.log));
  }
  if (::access(places.log->c_str(), W_OK) != 0) {
    return wrong(check, displayPath(*places.log) + " cannot be written: " + std::strerror(errno),
                 "chmod 600 " + quotedPath(*places.log));
  }
  if (stamp->size > surelyRotated) {
    return wrong(check,
                 displayPath(*places.log) + " has grown to " + std::to_string(stamp->size >> 20U) +
                     " MiB and is not rotated",
                 "mv " + quotedPath(*places.log) + " " + quotedPath(places.log->native() + ".old"));
  }
  return well(check, "The log is written and rotated: " + displayPath(*places.log));
}

}  // namespace corvane::ctl
