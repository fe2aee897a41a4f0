#include "corvane_standin/capture/Captures.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <stdexcept>
#include <utility>

#include "CorvaneCore/files/Files.h"
#include "corvane_standin/capture/ScreenPainter.h"

namespace corvane::standin {

namespace {

namespace fs = std::filesystem;

/// The time of day as phones show it, e.g. "9:41".
std::string timeOfDay(Date date) {
  const auto sinceMidnight = date - std::chrono::floor<std::chrono::days>(date);
  const std::chrono::hh_mm_ss time(sinceMidnight);
  const std::string minutes = std::to_string(time.minutes().count());
  return std::to_string(time.hours().count()) + (minutes.size() < 2 ? ":0" : ":") + minutes;
}

constexpr std::size_t numberWidth = 6;

/// The folders of runs, whose names begin with their numbers, the oldest first.
std::vector<fs::path> runFolders(const fs::path& folder) {
  auto folders = listVisible(folder);
  std::erase_if(folders, [](const fs::path& each) {
    const std::string name = each.filename().string();
    return name.find_first_not_of("0123456789") != numberWidth || name[numberWidth] != '-';
  });
  return folders;
}

}  // namespace

TestCapture::TestCapture(std::filesystem::path folder, ScreenStory story, const Clock& clock,
                         const StandInLog& log)
    : folder(std::move(folder)), story(std::move(story)), clock(clock), log(log) {}

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
    const std::string fileName = "screen-" + std::to_string(moment) + ".png";
    if (!touches.contains(moment)) touches[moment] = writeScreen(moment, folder / fileName);
    CaptureSession::Frame frame{.stepIndex = static_cast<std::int64_t>(step),
                                .status = status,
                                .imageFileName = fileName,
                                .touches = std::nullopt};
    const auto& touched = touches[moment];
    if (status != FrameStatus::afterStep && !touched.empty()) frame.touches = touched;
    session.frames.push_back(std::move(frame));
    session.write(folder);
  } catch (const std::exception& error) {
    ended = true;
    log.warn("a capture session ends early: " + std::string(error.what()));
  }
}

std::vector<Touch> TestCapture::writeScreen(std::size_t moment, const fs::path& file) const {
  Screen screen = story.screenAt(moment);
  screen.time = timeOfDay(clock.date());
  const PaintedScreen painted = paint(screen);
  writeFileWhole(file, painted.png);
  if (moment == story.stepCount()) return {};
  return touchesOf(story.words(moment), painted.target);
}

std::unique_ptr<TestCapture> Captures::begin(std::string_view requestId, const PlannedTest& test,
                                             const std::string& appName,
                                             const std::string& platform) {
  if (!enabled || test.steps.empty()) return nullptr;
  try {
    fs::create_directory(folder);
    const fs::path run = folderOf(requestId);
    if (fs::create_directory(run)) {
      const auto runs = runFolders(folder);
      for (std::size_t i = 0; i + keptRuns < runs.size(); ++i) fs::remove_all(runs[i]);
    }
    const fs::path session = run / std::to_string(listVisible(run).size() + 1);
    fs::create_directory(session);
    return std::make_unique<TestCapture>(session, ScreenStory(test, appName, platform), clock, log);
  } catch (const fs::filesystem_error& error) {
    log.warn(std::string("a test is not captured: ") + error.what());
    return nullptr;
  }
}

fs::path Captures::folderOf(std::string_view requestId) const {
  const std::string suffix = "-" + std::string(requestId);
  const auto folders = runFolders(folder);
  const std::string latest = folders.empty() ? "000000" : folders.back().filename().string();
  if (latest.substr(numberWidth) == suffix) return folders.back();
  const std::string next = std::to_string(std::stoul(latest) + 1);
  return folder /
         (std::string(numberWidth - std::min(numberWidth, next.size()), '0') + next + suffix);
}

}  // namespace corvane::standin
