#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "corvane_standin/capture/ScreenPainter.h"
#include "corvane_standin/capture/TestCapture.h"
#include "corvane_standin/program/Clock.h"
#include "corvane_standin/program/StandInLog.h"
#include "corvane_standin/runs/RunPlan.h"

namespace corvane::standin {

/// The capture sessions of this home: a folder for each run, numbered in their order, with a folder
/// for each of its tests. Those of old runs are removed as new ones begin.
class Captures {
 public:
  static constexpr std::size_t keptRuns = 20;

  /// Sessions go to `folder`, which is made when its parent is there; nothing is recorded unless
  /// `enabled`. `clock` and `log` outlive this.
  Captures(std::filesystem::path folder, bool enabled, const Clock& clock, const StandInLog& log)
      : folder(std::move(folder)), enabled(enabled), clock(clock), log(log) {}
  Captures(const Captures&) = delete;
  Captures& operator=(const Captures&) = delete;

  /// Begins the session of a run's next test; null when nothing is recorded. What is returned does
  /// not outlive this.
  [[nodiscard]] std::unique_ptr<TestCapture> begin(std::string_view requestId,
                                                   const PlannedTest& test,
                                                   const std::string& appName,
                                                   const std::string& platform);

 private:
  [[nodiscard]] std::filesystem::path folderOf(std::string_view requestId) const;
  void prune() const;

  std::filesystem::path folder;
  bool enabled;
  const Clock& clock;
  const StandInLog& log;
  ScreenPainter painter;
};

}  // namespace corvane::standin
