#include "corvanectl/trial/TrialHome.h"

#include <sys/stat.h>

#include <cstdlib>
#include <system_error>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/paths/UserFolders.h"
#include "corvanectl/commands/CommandContext.h"
#include "corvanectl/terminal/ShellWord.h"

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;

constexpr const char* note = "About this folder.txt";
/// All that a trial leaves in its folder.
constexpr const char* contents[] = {note,        "corvane-mcp", "Corvane.app", "Program", "Servers",
                                    "start.log", ".cache",      ".local",      "Library"};
/// What would lead a program out of its home, or keep the server from starting the app.
constexpr const char* strayVariables[] = {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME",
                                          "CORVANE_MCP_SUPPRESS_LAUNCH"};

/// Writes only what differs, as programs may be starting from it.
void provide(const fs::path& file, const std::string& text, mode_t mode) {
  if (fileExists(file) && readFile(file) == text) return;
  writeFileWhole(file, text);
  if (::chmod(file.c_str(), mode) != 0) {
    throw FileError("write", file, std::error_code(errno, std::generic_category()));
  }
}

void provideLink(const fs::path& link, const fs::path& target) {
  std::error_code none;
  if (fs::read_symlink(link, none) == target) return;
  fs::create_directories(link.parent_path());
  fs::remove(link, none);
  fs::create_directory_symlink(target, link);
}

}  // namespace

fs::path TrialHome::usual() {
  return UserFolders::current().applicationSupport / "CorvaneTrial";
}

fs::path TrialHome::standIn() const {
  return home / "Corvane.app" / "Contents" / "MacOS" / "Corvane";
}

fs::path TrialHome::serverInBundle() const {
  return standIn().parent_path() / "corvane-mcp";
}

bool TrialHome::exists() const {
  return fileExists(home / note);
}

void TrialHome::prepare(const TrialPrograms& programs) const {
  if (!exists() && fileExists(home) && !fs::is_empty(home)) {
    throw UsageError(displayPath(home) +
                     " holds something else; a trial takes a folder of its own");
  }
  ensureDirectoryExists(home);
  provide(home / note,
          "The home of a trial of corvane-mcp. 'corvanectl try --stop --reset' removes it.\n",
          0600);
  // The stand-in's command line tells which home it is of.
  const fs::path link = home / "Program" / "Corvane.app";
  provideLink(link, programs.standIn);
  const fs::path contentsOfBundle = standIn().parent_path().parent_path();
  provide(contentsOfBundle / "Info.plist", readFile(programs.standIn / "Contents" / "Info.plist"),
          0600);
  // A system that opens bundles does so without this program's environment.
  std::string script = "#!/bin/sh\n";
  for (const char* variable : strayVariables) script += "unset " + std::string(variable) + "\n";
  const std::string quotedHome = shellWord(home.native());
  script += "export HOME=" + quotedHome + " CFFIXED_USER_HOME=" + quotedHome + "\nexec " +
            shellWord((link / "Contents" / "MacOS" / "Corvane").native()) + " \"$@\"\n";
  provide(standIn(), script, 0700);
  std::string serving = "#!/bin/sh\nexec " + shellWord(programs.corvanectl.native()) +
                        " try --serve --home " + quotedHome;
  if (programs.server) serving += " --server " + shellWord(programs.server->native());
  provide(server(), serving + "\n", 0700);
}

void TrialHome::remove() const {
  for (const char* name : contents) fs::remove_all(home / name);
  std::error_code holdsMore;
  fs::remove(home, holdsMore);
}

void TrialHome::enter() const {
  for (const char* variable : strayVariables) ::unsetenv(variable);
  ::setenv("HOME", home.c_str(), 1);
  ::setenv("CFFIXED_USER_HOME", home.c_str(), 1);
}

}  // namespace corvane::ctl
