#include "corvanectl/trial/StandIn.h"

#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <optional>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/paths/AgentPaths.h"
#include "corvanectl/system/ChildProcess.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;

const fs::path programInBundle = fs::path("Contents") / "MacOS" / "Corvane";

void pause(Interruption& interruption) {
  (void)interruption.wait({}, after(Seconds(0.02)));
}

/// Keeps whatever else this program was started with from one that outlives it: a pipe that it held
/// open would never end for its reader.
void closeForOthers() {
  std::error_code unseen;
  for (const auto& entry : fs::directory_iterator("/dev/fd", unseen)) {
    const std::string name = entry.path().filename();
    int file = -1;
    std::from_chars(name.data(), name.data() + name.size(), file);
    if (file > STDERR_FILENO) ::fcntl(file, F_SETFD, FD_CLOEXEC);
  }
}

/// What was said last, as the end of a sentence.
std::string lastWords(const fs::path& errors) {
  try {
    const std::string said = oneLine(readFile(errors));
    return said.empty() ? said : ": " + said;
  } catch (const FileError&) {
    return {};
  }
}

}  // namespace

fs::path locateStandIn(const fs::path& ownPath) {
  const fs::path folder = ownPath.parent_path();
  for (const fs::path& bundle :
       {folder / "Corvane.app", folder.parent_path() / "libexec" / "corvane-mcp" / "Corvane.app"}) {
    if (isProgram(bundle / programInBundle)) return bundle;
  }
  throw TrialFault("the stand-in for Corvane.app is not installed: there is none in " +
                   displayPath(folder) + " or beside it in libexec/corvane-mcp. On Debian it is " +
                   "the package corvane-mcp-standin");
}

bool startStandIn(const TrialHome& home, Interruption& interruption, Deadline deadline) {
  closeForOthers();
  const fs::path activity = AgentPaths::current().agentActivityFile();
  const auto former = readStamp(activity);
  ChildProcess child = ChildProcess::startAlone(home.standIn(), {}, home.errors());
  bool ranBefore = false;
  // One that was started a moment ago by somebody else has not published yet either.
  while (ranBefore ? !fileExists(activity) : readStamp(activity) == former) {
    if (!ranBefore && child.hasEnded()) {
      if (!child.endedWell()) {
        throw TrialFault("the stand-in for Corvane.app " + child.ending() +
                         lastWords(home.errors()));
      }
      ranBefore = true;
    }
    if (hasPassed(deadline)) {
      throw TrialFault("the stand-in for Corvane.app does not publish its workspace" +
                       lastWords(home.errors()));
    }
    pause(interruption);
  }
  child.letGo();
  return !ranBefore;
}

void startStandInApart(const TrialHome& home, const std::optional<fs::path>& server,
                       Interruption& interruption) {
  std::vector<std::string> words{"try", "--home", home.folder()};
  if (server) words.insert(words.end(), {"--server", *server});
  ChildProcess child = ChildProcess::startAlone(executablePath(), words);
  while (!child.hasEnded()) pause(interruption);
  if (!child.endedWell()) throw TrialFault("the trial does not run");
}

void stopStandIn(const TrialHome& home, Interruption& interruption, Deadline deadline) {
  ChildProcess child = ChildProcess::startAlone(home.standIn(), {"--quit"}, home.errors());
  while (!child.hasEnded()) {
    if (hasPassed(deadline)) throw TrialFault("the stand-in for Corvane.app does not quit");
    pause(interruption);
  }
  if (!child.endedWell()) {
    throw TrialFault("the stand-in for Corvane.app does not quit" + lastWords(home.errors()));
  }
}

}  // namespace corvane::ctl
