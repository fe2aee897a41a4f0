#include "corvanectl/doctor/ServerChecks.h"

#include <chrono>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/Date.h"
#include "corvanectl/answers/ProjectAnswer.h"
#include "corvanectl/answers/StatusAnswer.h"
#include "corvanectl/answers/ToolRefusal.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

Finding checkVersions(const std::string& serverVersion) {
  constexpr auto check = "versions";
  const std::string own = CORVANE_VERSION;
  if (serverVersion == own) return well(check, "Server and corvanectl are of version " + own);
  return wrong(check,
               "The server is of version " +
                   (serverVersion.empty() ? "<not told>" : oneLine(serverVersion)) +
                   ", corvanectl of " + own,
               "cmake --install build/release   (both come from one build)");
}

Finding checkApp(const HealthAnswer& places) {
  constexpr auto check = "app";
  if (places.app) return well(check, "Corvane.app is " + displayPath(*places.app));
  return wrong(check, "Corvane.app is in none of the places where the server looks",
               commandToStart(places) + "   or, to try it without: corvanectl try");
}

Finding checkRunningApp(Session& session, const HealthAnswer& places) {
  constexpr auto check = "running";
  const StatusAnswer status = askStatus(session);
  if (!status.appRunning) {
    return well(
        check, std::string("Corvane.app is not running") + (places.app ? "; a run starts it" : ""));
  }
  const auto silence = status.secondsSinceHeartbeat;
  if (silence && *silence <= StatusAnswer::longestSilence) {
    return well(check, "Corvane.app is running, for this home");
  }
  return wrong(check,
               "A Corvane.app is running, but " +
                   (silence ? "has not been heard of in this home for " +
                                  displaySeconds(static_cast<double>(*silence))
                            : std::string("nothing has been heard of it in this home")) +
                   ": it hangs, or belongs to another home or user",
               "pkill -u \"$USER\" -f Corvane.app/Contents/MacOS/Corvane");
}

Finding checkWorkspace(Session& session, const HealthAnswer& places) {
  constexpr auto check = "workspace";
  constexpr std::chrono::hours fresh{24};
  // The app publishes it when it starts.
  const std::string mend = commandToStart(places);
  try {
    const ProjectAnswer answer = askProject(session);
    const auto date = answer.updatedAt ? parseDate(*answer.updatedAt) : std::nullopt;
    if (!date) return wrong(check, "The published workspace does not say how old it is", mend);
    const auto age = currentDate() - *date;
    const std::string told =
        std::to_string(answer.projects.size()) +
        (answer.projects.size() == 1 ? " project" : " projects") + ", published " +
        oneLine(*answer.updatedAt) +
        (answer.appVersion ? " by version " + oneLine(*answer.appVersion) : "");
    if (age <= fresh) return well(check, "The workspace is fresh: " + told);
    return wrong(check, "The workspace is over a day old: " + told, mend);
  } catch (const ToolRefusal& refusal) {
    if (refusal.code != noWorkspace) throw;
    return wrong(check, "Corvane.app has not published its workspace", mend);
  }
}

}  // namespace corvane::ctl
