#include "corvane_mcp/workspace/RecentResults.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonErrors.h"
#include "CorvaneCore/json/JsonReader.h"

namespace corvane {

namespace {

constexpr std::size_t mostListed = 5;

struct ResultFile {
  std::filesystem::path path;
  FileTime modifiedAt;
};

/// Files of one time stand in the order of their names.
bool isNewer(const ResultFile& left, const ResultFile& right) {
  if (left.modifiedAt != right.modifiedAt) return left.modifiedAt > right.modifiedAt;
  return left.path < right.path;
}

std::vector<ResultFile> newestFiles(const std::filesystem::path& folder) {
  std::vector<ResultFile> files;
  for (const auto& entry : listVisible(folder)) {
    if (entry.extension() != ".json") continue;
    if (const auto stamp = readStamp(entry)) files.push_back({entry, stamp->modifiedAt});
  }
  std::sort(files.begin(), files.end(), isNewer);
  if (files.size() > mostListed) files.resize(mostListed);
  return files;
}

std::optional<JsonObject> readResult(const std::filesystem::path& path) {
  try {
    return readMembers(readFile(path),
                       {"requestId", "status", "terminal", "source", "projectName"});
  } catch (const FileError&) {
    return std::nullopt;
  } catch (const DecodeError&) {
    return std::nullopt;
  }
}

template <class T>
void copyIfFits(const JsonObject& from, std::string_view key, JsonObject& to) {
  if (const T* value = from.findAs<T>(key)) to.set(key, *value);
}

}  // namespace

AnyCodable::Array recentResults(const AgentPaths& paths, FileTime now) {
  AnyCodable::Array summaries;
  for (const auto& file : newestFiles(paths.agentResultsDirectory())) {
    const auto result = readResult(file.path);
    if (!result) continue;
    const auto* requestId = result->findAs<std::string>("requestId");
    const auto* status = result->findAs<std::string>("status");
    if (!requestId || !status) continue;
    JsonObject summary{{"requestId", *requestId},
                       {"status", *status},
                       {"secondsSinceUpdate", secondsBetween(file.modifiedAt, now)}};
    copyIfFits<bool>(*result, "terminal", summary);
    copyIfFits<std::string>(*result, "source", summary);
    copyIfFits<std::string>(*result, "projectName", summary);
    summaries.emplace_back(std::move(summary));
  }
  return summaries;
}

}  // namespace corvane
