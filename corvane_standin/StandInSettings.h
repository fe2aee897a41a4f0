#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "CorvaneCore/json/Record.h"
#include "corvane_standin/program/StandInLog.h"
#include "corvane_standin/runs/TestOutcome.h"

namespace corvane::standin {

/// How fast the stand-in works and how tests turn out. Every value may be left out of the file.
struct StandInSettings {
  double stepSeconds = 0.4;
  double buildSeconds = 1.5;
  /// The longest a waiting or running request goes without its result file being refreshed.
  double heartbeatSeconds = 15;
  /// From the start of the program to the moment it takes up requests.
  double coldStartSeconds = 0.5;
  double creditsPerExploredStep = 15;
  /// The credits there are at the start.
  double creditBalance = 500;
  /// Whether runs leave capture sessions.
  bool captures = true;
  /// By test name.
  std::map<std::string, TestOutcome> outcomes;

  static constexpr auto fields() {
    using R = StandInSettings;
    return FieldList(field("stepSeconds", &R::stepSeconds).withDefault(),
                     field("buildSeconds", &R::buildSeconds).withDefault(),
                     field("heartbeatSeconds", &R::heartbeatSeconds).withDefault(),
                     field("coldStartSeconds", &R::coldStartSeconds).withDefault(),
                     field("creditsPerExploredStep", &R::creditsPerExploredStep).withDefault(),
                     field("creditBalance", &R::creditBalance).withDefault(),
                     field("captures", &R::captures).withDefault(),
                     field("outcomes", &R::outcomes).withDefault());
  }

  /// The first value that cannot be worked with, as text for people.
  [[nodiscard]] std::optional<std::string> problem() const;

  /// The settings in `file`; the defaults when there is none. Settings that cannot be used are told
  /// to `log` and give way to the defaults as a whole.
  [[nodiscard]] static StandInSettings load(const std::filesystem::path& file,
                                            const StandInLog& log);
};

}  // namespace corvane::standin
