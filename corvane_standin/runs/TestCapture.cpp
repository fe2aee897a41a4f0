#include "corvane_standin/runs/TestCapture.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <stdexcept>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/text/Uuid.h"
#include "corvane_standin/capture/ScreenPainter.h"

namespace corvane::standin {

namespace {

namespace fs = std::filesystem;

/// The time of day as phones show it, e.g. "9:41".
std::string timeOfDay(Date date) {
  const std::chrono::hh_mm_ss time(date - std::chrono::floor<std::chrono::days>(date));
  const std::string minutes = std::to_string(time.minutes().count());
  return std::to_string(time.hours().count()) + (minutes.size() < 2 ? ":0" : ":") + minutes;
}

void removeOldRuns(const fs::path& folder) {
  auto runs = listVisible(folder);
  std::erase_if(runs,
                [](const fs::path& each) { return !parseRequestId(each.filename().string()); });
  std::ranges::sort(runs, {}, [](const fs::path& each) { return fs::last_write_time(each); });
  for (std::size_t i = 0; i + Captures::keptRuns < runs.size(); ++i) fs::remove_all(runs[i]);
}

}  // namespace

void TestCapture::beforeStep(std::size_t step) {
  record(step, FrameStatus::beforeStep, step);
}

void TestCapture::afterStep(std::size_t step, bool failed) {
  if (failed) failedStep = static_cast<std::int64_t>(step);
  // A step that failed has led nowhere.
  record(step, failed ? FrameStatus::onFailure : FrameStatus::afterStep, failed ? step : step + 1);
}

std::optional<AgentRunResult::TraceInfo> TestCapture::trace() const {
  if (session.frames.empty()) return std::nullopt;
  return AgentRunResult::TraceInfo{folder.string(), failedStep, session.frames.back().stepIndex};
}

void TestCapture::record(std::size_t step, FrameStatus status, std::size_t moment) {
  if (ended) return;
  try {
    // Writing must not bring back a home that is being deleted.
    if (!fileExists(folder)) throw std::runtime_error("its folder is gone");
    CaptureSession::Frame frame{.stepIndex = static_cast<std::int64_t>(step),
                                .status = status,
                                .imageFileName = "screen-" + std::to_string(moment) + ".png",
                                .touches = std::nullopt};
    if (!touches.contains(moment))
      touches[moment] = writeScreen(moment, folder / frame.imageFileName);
    const auto& touched = touches[moment];
    if (status != FrameStatus::afterStep && !touched.empty()) frame.touches = touched;
    session.frames.push_back(std::move(frame));
    session.write(folder);
  } catch (const std::exception& error) {
    ended = true;
    log.warn("a capture session ends early: " + std::string(error.what()));
  }
}

std::vector<Touch> TestCapture::writeScreen(std::size_t moment, const fs::path& file) {
  Screen& screen = story.screens.at(moment);
  screen.time = timeOfDay(clock.date());
  const PaintedScreen painted = paint(screen);
  writeFileWhole(file, painted.png);
  if (moment == story.steps.size()) return {};
  return touchesOf(story.steps[moment], painted.target);
}

std::unique_ptr<TestCapture> Captures::begin(const std::string& requestId, const PlannedTest& test,
                                             const std::string& appName,
                                             const std::string& platform) const {
  if (!enabled || test.steps.empty()) return nullptr;
  try {
    fs::create_directory(folder);
    const fs::path run = folder / requestId;
    if (fs::create_directory(run)) removeOldRuns(folder);
    const fs::path session = run / std::to_string(listVisible(run).size() + 1);
    fs::create_directory(session);
    return std::make_unique<TestCapture>(session, ScreenStory(test, appName, platform), clock, log);
  } catch (const fs::filesystem_error& error) {
    log.warn(std::string("a test is not captured: ") + error.what());
    return nullptr;
  }
}

}  // namespace corvane::standin
