#include "corvane_mcp/workspace/RecentResults.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/results/AgentRunResult.h"

namespace corvane {

namespace {

using Result = AgentRunResult;

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
    return readMembers<&Result::requestId, &Result::status, &Result::terminal, &Result::source,
                       &Result::projectName>(readFile(path));
  } catch (const FileError&) {
    return std::nullopt;
  } catch (const DecodeError&) {
    return std::nullopt;
  }
}

/// Copies a field when there is one of the right type.
template <auto field>
bool copyField(const JsonObject& from, JsonObject& to) {
  const auto* value = findField<field>(from);
  if (value) to.set(keyOf<field>(), *value);
  return value != nullptr;
}

}  // namespace

AnyCodable::Array recentResults(const AgentPaths& paths, FileTime now) {
  AnyCodable::Array summaries;
  for (const auto& file : newestFiles(paths.agentResultsDirectory())) {
    const auto result = readResult(file.path);
    if (!result) continue;
    JsonObject summary{{"secondsSinceUpdate", secondsBetween(file.modifiedAt, now)}};
    if (!copyField<&Result::requestId>(*result, summary)) continue;
    if (!copyField<&Result::status>(*result, summary)) continue;
    copyField<&Result::terminal>(*result, summary);
    copyField<&Result::source>(*result, summary);
    copyField<&Result::projectName>(*result, summary);
    summaries.emplace_back(std::move(summary));
  }
  return summaries;
}

}  // namespace corvane
