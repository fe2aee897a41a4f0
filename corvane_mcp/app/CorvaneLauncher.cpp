#include "corvane_mcp/app/CorvaneLauncher.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/Folder.h"
#include "corvane_mcp/app/AppProcess.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr const char* suppressVariable = "CORVANE_MCP_SUPPRESS_LAUNCH";

/// Mac Catalyst builds and index-store copies are never what a developer means to run.
bool isMeantToRun(std::string_view path) {
  return path.find("maccatalyst") == std::string_view::npos &&
         path.find("Index.noindex") == std::string_view::npos;
}

/// The newest build met so far. Of builds of one date the first in the order of names stays.
struct NewestBuild {
  std::optional<fs::path> path;
  FileTime modifiedAt = FileTime::min();

  void consider(const fs::path& build, std::optional<FileStamp> stamp) {
    const FileTime time = (stamp ? stamp->modifiedAt : std::nullopt).value_or(FileTime::min());
    if (path && (time < modifiedAt || (time == modifiedAt && *path < build))) return;
    path = build;
    modifiedAt = time;
  }
};

/// Held while this server sees to it that the app runs, so that no other server starts it as well.
/// One that is stuck is not waited for for long.
FileDescriptor lockAgainstOtherServers(const fs::path& app) {
  constexpr int attempts = 5000;
  FileDescriptor bundle(::open(app.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  for (int i = 0; i < attempts && ::flock(bundle.get(), LOCK_EX | LOCK_NB) != 0; ++i) {
    if (errno != EWOULDBLOCK) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return bundle;
}

std::optional<fs::path> ifExists(fs::path path) {
  return fileExists(path) ? std::optional(std::move(path)) : std::nullopt;
}

}  // namespace

std::optional<fs::path> CorvaneLauncher::findCorvaneApp() const {
  if (auto app = bundledCorvaneApp()) return app;
  if (auto app = ifExists(places.systemApplications / "Corvane.app")) return app;
  if (auto app = ifExists(places.home / "Applications" / "Corvane.app")) return app;
  return newestDerivedDataBuild();
}

std::optional<fs::path> CorvaneLauncher::bundledCorvaneApp() const {
  if (places.program.empty()) return std::nullopt;
  std::error_code error;
  const fs::path program = fs::weakly_canonical(places.program, error);
  if (error) return std::nullopt;
  const fs::path bundle = program.parent_path().parent_path().parent_path();
  if (bundle.extension() != ".app" || !bundle.filename().native().starts_with("Corvane")) {
    return std::nullopt;
  }
  return ifExists(bundle);
}

std::optional<fs::path> CorvaneLauncher::newestDerivedDataBuild() const {
  NewestBuild newest;
  // A development folder holds a hundred thousand files: an entry that is no folder and has another
  // name costs nothing but its reading.
  std::vector<std::string> left{places.home / "Library" / "Developer" / "Xcode" / "DerivedData"};
  while (!left.empty()) {
    const std::string path = std::move(left.back());
    left.pop_back();
    Folder folder(path, Folder::Links::refused);
    while (const auto entry = folder.next()) {
      const bool hasAppsName = entry->name == "Corvane.app";
      if (!hasAppsName && !entry->mayBeFolder) continue;
      std::string inside = path + '/';
      inside += entry->name;
      if (hasAppsName && isMeantToRun(inside)) newest.consider(inside, folder.stampOf(*entry));
      if (entry->mayBeFolder) left.push_back(std::move(inside));
    }
  }
  return newest.path;
}

bool CorvaneLauncher::isRunning() const {
  return places.isRunning("Corvane.app/Contents/MacOS/Corvane");
}

bool CorvaneLauncher::launch(const fs::path& app) const {
  const char* suppress = std::getenv(suppressVariable);
  if (suppress && std::string_view(suppress) == "1") {
    logger.warn("Launch suppressed via CORVANE_MCP_SUPPRESS_LAUNCH=1 (smoke-test only)");
    return false;
  }
  try {
    AppProcess::start(app);
    return true;
  } catch (const std::exception& error) {
    logger.error("Failed to launch Corvane.app at " + displayPath(app) + ": " + error.what());
    return false;
  }
}

bool CorvaneLauncher::ensureRunning(const fs::path& app) const {
  const std::scoped_lock turn(launching);
  const auto turnAmongServers = lockAgainstOtherServers(app);
  return isRunning() || launch(app);
}

}  // namespace corvane
