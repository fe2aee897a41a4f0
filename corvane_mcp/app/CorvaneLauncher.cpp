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
#include "corvane_mcp/app/AppProcess.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr const char* suppressVariable = "CORVANE_MCP_SUPPRESS_LAUNCH";

/// Mac Catalyst builds and index-store copies are never what a developer means to run.
bool isDevelopmentBuild(const fs::path& path) {
  return path.filename() == "Corvane.app" &&
         path.native().find("maccatalyst") == std::string::npos &&
         path.native().find("Index.noindex") == std::string::npos;
}

FileTime modifiedAt(const fs::path& path) {
  const auto stamp = readStamp(path);
  return (stamp ? stamp->modifiedAt : std::nullopt).value_or(FileTime::min());
}

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
  std::optional<fs::path> newest;
  FileTime newestTime = FileTime::min();
  std::vector<fs::path> folders{places.home / "Library" / "Developer" / "Xcode" / "DerivedData"};
  while (!folders.empty()) {
    const fs::path folder = std::move(folders.back());
    folders.pop_back();
    if (isDevelopmentBuild(folder)) {
      const FileTime time = modifiedAt(folder);
      if (!newest || time > newestTime) {
        newest = folder;
        newestTime = time;
      }
    }
    std::error_code ignored;
    if (fs::symlink_status(folder, ignored).type() != fs::file_type::directory) continue;
    // The last one pushed is the next one looked at, so that of equals the first in order is found.
    const auto entries = listVisible(folder);
    folders.insert(folders.end(), entries.rbegin(), entries.rend());
  }
  return newest;
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
