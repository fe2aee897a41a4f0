#include "corvane_standin/capture/Captures.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <exception>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

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

/// The number that the folder of a run begins with; nothing for a folder of another kind.
std::optional<unsigned> numberOf(const fs::path& runFolder) {
  const std::string name = runFolder.filename().string();
  if (name.size() <= numberWidth || name[numberWidth] != '-') return std::nullopt;
  unsigned number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + numberWidth, number);
  return end == name.data() + numberWidth ? std::optional(number) : std::nullopt;
}

/// The folders of runs, the oldest first.
std::vector<fs::path> runFolders(const fs::path& folder) {
  auto folders = listVisible(folder);
  std::erase_if(folders, [](const fs::path& each) { return !numberOf(each); });
  return folders;
}

std::string padded(unsigned number) {
  const std::string digits = std::to_string(number);
  return std::string(numberWidth - std::min(numberWidth, digits.size()), '0') + digits;
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
  const PaintedScreen painted = paint(screen);
  Shot shot{"screen-" + std::to_string(step) + ".png", {}};
  writeFileWhole(folder / shot.fileName, painted.png);
  if (step < story.stepCount()) shot.touches = touchesOf(story.words(step), painted.target);
  return shots.emplace(step, std::move(shot)).first->second;
}

std::unique_ptr<TestCapture> Captures::begin(std::string_view requestId, const PlannedTest& test,
                                             const std::string& appName,
                                             const std::string& platform) {
  if (!enabled || test.steps.empty()) return nullptr;
  try {
    fs::create_directory(folder);
    const fs::path run = folderOf(requestId);
    if (fs::create_directory(run)) prune();
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
  if (folders.empty()) return folder / (padded(1) + suffix);
  const fs::path& latest = folders.back();
  if (latest.filename().string().substr(numberWidth) == suffix) return latest;
  return folder / (padded(*numberOf(latest) + 1) + suffix);
}

void Captures::prune() const {
  const auto folders = runFolders(folder);
  for (std::size_t i = 0; i + keptRuns < folders.size(); ++i) fs::remove_all(folders[i]);
}

}  // namespace corvane::standin
