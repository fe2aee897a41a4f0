#include "corvane_standin/capture/Captures.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

#include "CorvaneCore/files/Files.h"

namespace corvane::standin {

namespace {

namespace fs = std::filesystem;

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
    return std::make_unique<TestCapture>(session, ScreenStory(test, appName, platform), painter,
                                         clock, log);
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
