#include "corvane_standin/Settings.h"

#include <utility>

#include "CorvaneCore/json/AgentWire.h"

namespace corvane::standin {

std::optional<std::string> StandInSettings::problem() const {
  constexpr double longest = 1'000'000;
  for (const auto& [name, value] :
       {std::pair("stepSeconds", stepSeconds), std::pair("buildSeconds", buildSeconds),
        std::pair("heartbeatSeconds", heartbeatSeconds),
        std::pair("coldStartSeconds", coldStartSeconds)}) {
    // Written so that NaN is refused too.
    if (!(value >= 0 && value <= longest)) {
      return std::string(name) + ": expected seconds from 0 to 1000000";
    }
  }
  for (const auto& [test, outcome] : outcomes) {
    if (outcome.failedStep && *outcome.failedStep < 0) {
      return "outcomes." + test + ".failedStep: expected a step number from 0";
    }
  }
  return std::nullopt;
}

StandInSettings StandInSettings::load(const std::filesystem::path& file, const StandInLog& log) {
  if (!fileExists(file)) return {};
  std::string problem;
  try {
    auto settings = readRecord<StandInSettings>(file);
    const auto unusable = settings.problem();
    if (!unusable) return settings;
    problem = *unusable;
  } catch (const FileError& error) {
    problem = error.what();
  } catch (const DecodeError& error) {
    problem = error.what();
  }
  log.warn("settings.json is not used, the defaults are: " + problem);
  return {};
}

}  // namespace corvane::standin
