#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/capture/CaptureSession.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "corvane_standin/capture/ScreenStory.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/runs/TestRun.h"

namespace corvane::standin {

/// Records the capture session of one test as it runs. What goes wrong is logged and ends the
/// recording, never the run.
class TestCapture {
 public:
  /// `folder` exists and is empty. The others outlive this.
  TestCapture(std::filesystem::path folder, ScreenStory story, const Clock& clock,
              const StandInLog& log)
      : folder(std::move(folder)), story(std::move(story)), clock(clock), log(log) {}

  void beforeStep(std::size_t step);
  /// Follows beforeStep for the same step.
  void afterStep(std::size_t step, bool failed);

  /// Where the session lies, as results tell it; nothing while it is empty.
  [[nodiscard]] std::optional<AgentRunResult::TraceInfo> trace() const;

 private:
  void record(std::size_t step, FrameStatus status, std::size_t moment);
  /// Writes a moment's picture and gives the touches of the step that begins with it.
  [[nodiscard]] std::vector<Touch> writeScreen(std::size_t moment,
                                               const std::filesystem::path& file);

  std::filesystem::path folder;
  ScreenStory story;
  const Clock& clock;
  const StandInLog& log;
  /// By the moments that have a picture: one serves as the end of a step and the beginning of the
  /// next.
  std::map<std::size_t, std::vector<Touch>> touches;
  CaptureSession session;
  std::optional<std::int64_t> failedStep;
  bool ended = false;
};

/// The capture sessions of this home: a folder for each run with a folder for each of its tests.
/// Those of old runs are removed as new ones begin.
class Captures {
 public:
  static constexpr std::size_t keptRuns = 20;

  /// Sessions go to `folder`, which is made when its parent is there; nothing is recorded unless
  /// `enabled`. `clock` and `log` outlive this.
  Captures(std::filesystem::path folder, bool enabled, const Clock& clock, const StandInLog& log)
      : folder(std::move(folder)), enabled(enabled), clock(clock), log(log) {}

  /// Begins the session of a run's next test; null when nothing is recorded. What is returned does
  /// not outlive this.
  [[nodiscard]] std::unique_ptr<TestCapture> begin(const std::string& requestId,
                                                   const PlannedTest& test,
                                                   const std::string& appName,
                                                   const std::string& platform) const;

 private:
  std::filesystem::path folder;
  bool enabled;
  const Clock& clock;
  const StandInLog& log;
};

}  // namespace corvane::standin
