#include "corvane_standin/workspace/ProjectApp.h"

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/workspace/FirstWorkspace.h"
#include "corvane_standin/workspace/Lookup.h"

namespace corvane::standin {

std::string platformFor(const std::optional<std::string>& asked,
                        const AgentContext::ProjectContext& project) {
  const std::string wanted = asked ? *asked : project.platform.value_or("iOS");
  const std::string platform = asciiLowercase(wanted);
  if (platform == "ios") return "iOS";
  if (platform == "android") return "android";
  throw RequestRefused("There is no platform named " + inQuotes(wanted) +
                       ". Platforms: 'iOS', 'android'.");
}

AgentRunResult::AppIdentity appFor(const std::string& platform,
                                   const AgentContext::ProjectContext& project) {
  const auto& bundle = platform == "iOS" ? project.bundleIdentifier : project.applicationId;
  if (bundle) return installedApp(*bundle);
  throw RequestRefused(
      "The project " + inQuotes(project.name) + " has no app for " + platform + ".",
      "platformNotConfigured");
}

}  // namespace corvane::standin
