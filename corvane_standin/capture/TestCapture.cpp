#include "corvane_standin/capture/TestCapture.h"

#include <chrono>
#include <exception>
#include <stdexcept>
#include <utility>

#include "corvane_standin/capture/Gestures.h"

namespace corvane::standin {

namespace {

/// The time of day as phones show it, e.g. "9:41".
std::string timeOfDay(Date date) {
  const auto sinceMidnight = date - std::chrono::floor<std::chrono::days>(date);
  const std::chrono::hh_mm_ss time(sinceMidnight);
  const std::string minutes = std::to_string(time.minutes().count());
  return std::to_string(time.hours().count()) + (minutes.size() < 2 ? ":0" : ":") + minutes;
}

}  // namespace

TestCapture::TestCapture(std::filesystem::path folder, ScreenStory story, ScreenPainter& painter,
                         const Clock& clock, const StandInLog& log)
    : folder(std::move(folder)),
      story(std::move(story)),
      painter(painter),
      clock(clock),
      log(log) {}

void TestCapture::beforeStep(std::size_t step) {
  record(step, FrameStatus::beforeStep, step);
}

void TestCapture::afterStep(std::size_t step, bool failed) {
  if (failed) {
    failedStep = static_cast<std::int64_t>(step);
    // A step that failed has led nowhere.
    record(step, FrameStatus::onFailure, step);
  } else {
    record(step, FrameStatus::afterStep, step + 1);
  }
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
    const Shot& shot = shotBefore(moment);
    CaptureSession::Frame frame{.stepIndex = static_cast<std::int64_t>(step),
                                .status = status,
                                .imageFileName = shot.fileName,
                                .touches = std::nullopt};
    if (status != FrameStatus::afterStep && !shot.touches.empty()) frame.touches = shot.touches;
    session.frames.push_back(std::move(frame));
    session.write(folder);
  } catch (const std::exception& error) {
    ended = true;
    log.warn("a capture session ends early: " + std::string(error.what()));
  }
}

const TestCapture::Shot& TestCapture::shotBefore(std::size_t step) {
  if (const auto known = shots.find(step); known != shots.end()) return known->second;
  Screen screen = story.screenAt(step);
  screen.time = timeOfDay(clock.date());
  const PaintedScreen painted = painter.paint(screen);
  Shot shot{"screen-" + std::to_string(step) + ".png", {}};
  writeFileWhole(folder / shot.fileName, painted.png);
  if (step < story.stepCount()) shot.touches = touchesOf(story.words(step), painted.target);
  return shots.emplace(step, std::move(shot)).first->second;
}

}  // namespace corvane::standin
