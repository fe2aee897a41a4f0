#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/capture/CaptureSession.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "corvane_standin/capture/ScreenPainter.h"
#include "corvane_standin/capture/ScreenStory.h"
#include "corvane_standin/program/Clock.h"
#include "corvane_standin/program/StandInLog.h"

namespace corvane::standin {

/// Records the capture session of one test as it runs. What goes wrong is logged and ends the
/// recording, never the run.
class TestCapture {
 public:
  /// `folder` exists and is empty. The others outlive this.
  TestCapture(std::filesystem::path folder, ScreenStory story, ScreenPainter& painter,
              const Clock& clock, const StandInLog& log);
  TestCapture(const TestCapture&) = delete;
  TestCapture& operator=(const TestCapture&) = delete;

  void beforeStep(std::size_t step);
  /// Follows beforeStep for the same step.
  void afterStep(std::size_t step, bool failed);

  /// Where the session lies, as results tell it; nothing while it is empty.
  [[nodiscard]] std::optional<AgentRunResult::TraceInfo> trace() const;

 private:
  /// One picture serves as the end of a step and the beginning of the next.
  struct Shot {
    std::string fileName;
    std::vector<Touch> touches;
  };

  void record(std::size_t step, FrameStatus status, std::size_t moment);
  [[nodiscard]] const Shot& shotBefore(std::size_t step);

  std::filesystem::path folder;
  ScreenStory story;
  ScreenPainter& painter;
  const Clock& clock;
  const StandInLog& log;
  std::map<std::size_t, Shot> shots;
  CaptureSession session;
  std::optional<std::int64_t> failedStep;
  bool ended = false;
};

}  // namespace corvane::standin
