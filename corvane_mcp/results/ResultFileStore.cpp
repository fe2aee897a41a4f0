#include "corvane_mcp/results/ResultFileStore.h"

#include <algorithm>
#include <vector>

#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

using Result = AgentRunResult;

constexpr std::chrono::milliseconds passInterval{500};

/// For files that do not say themselves whether they are terminal.
bool isTerminalStatus(std::string_view status) {
  const auto known = fromRawValue<RunStatus>(status);
  return known && isTerminal(*known);
}

/// Watches one result file from pass to pass.
class WatchedFile {
 public:
  explicit WatchedFile(std::filesystem::path path) : path(std::move(path)) {}

  /// Looks at the file again. True when it has changed and holds a new snapshot.
  bool look() {
    const auto stamp = readStamp(path);
    if (!stamp || stamp->size == 0) return false;
    seen = true;
    if (stamp == lastStamp) return false;
    lastStamp = stamp;
    auto snapshot = ResultFileStore::parse(path);
    if (!snapshot) return false;
    latest = std::move(snapshot);
    return true;
  }

  const std::filesystem::path path;
  /// Whether there was ever something in it.
  bool seen = false;
  std::optional<ResultFileStore::Snapshot> latest;

 private:
  std::optional<FileStamp> lastStamp;
};

constexpr std::size_t mostListed = 5;

struct ResultFile {
  std::string name;
  FileTime modifiedAt;
};

/// Files of one time stand in the order of their names.
bool isNewer(const ResultFile& left, const ResultFile& right) {
  if (left.modifiedAt != right.modifiedAt) return left.modifiedAt > right.modifiedAt;
  return left.name < right.name;
}

/// The newest files of a folder that may hold a hundred thousand: no more than are wanted are kept.
std::vector<ResultFile> newestFiles(const std::filesystem::path& path) {
  std::vector<ResultFile> newest;
  Folder folder(path);
  while (const auto entry = folder.next()) {
    if (!entry->name.ends_with(".json")) continue;
    const auto stamp = folder.stampOf(*entry);
    if (!stamp || !stamp->modifiedAt) continue;
    const bool isFull = newest.size() == mostListed;
    if (isFull && *stamp->modifiedAt < newest.back().modifiedAt) continue;
    const ResultFile file{std::string(entry->name), *stamp->modifiedAt};
    newest.insert(std::upper_bound(newest.begin(), newest.end(), file, isNewer), file);
    if (isFull) newest.pop_back();
  }
  return newest;
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

Task<ResultFileStore::Outcome> ResultFileStore::poll(std::string requestId,
                                                     std::int64_t waitSeconds,
                                                     OnUpdate onUpdate) const {
  using std::chrono::milliseconds;
  const auto deadline = clock.elapsed() + std::chrono::seconds(waitSeconds);
  WatchedFile file(AgentRunResult::fileURL(requestId, paths));
  while (true) {
    if (file.look()) {
      if (file.latest->terminal) break;
      if (onUpdate) onUpdate(*file.latest);
    }
    const auto left = std::chrono::ceil<milliseconds>(deadline - clock.elapsed());
    if (left <= milliseconds::zero()) break;
    co_await clock.sleepFor(std::min(left, passInterval));
  }
  if (file.latest) co_return std::move(*file.latest);
  if (file.seen) co_return Unreadable{file.path};
  if (requestStillPending(requestId)) co_return Pending{};
  co_return Unknown{};
}

std::optional<ResultFileStore::Snapshot> ResultFileStore::parse(const std::filesystem::path& file) {
  Snapshot snapshot;
  try {
    // Results can be large, and an answer puts a few words before them.
    constexpr std::size_t headerCapacity = 1024;
    snapshot.rawJSON = readFile(file, largestFile, headerCapacity);
    const JsonObject result = readMembers<&Result::status, &Result::terminal>(snapshot.rawJSON);
    const auto* status = findField<&Result::status>(result);
    if (!status) return std::nullopt;
    snapshot.status = *status;
    const auto* stated = findField<&Result::terminal>(result);
    snapshot.terminal = stated ? *stated : isTerminalStatus(snapshot.status);
  } catch (const FileError&) {
    return std::nullopt;
  } catch (const DecodeError&) {
    return std::nullopt;
  }
  if (const auto stamp = readStamp(file)) snapshot.modifiedAt = stamp->modifiedAt;
  return snapshot;
}

bool ResultFileStore::requestStillPending(std::string_view requestId) const {
  if (fileExists(AgentRunRequest::fileURL(requestId, paths))) return true;
  Folder imports(paths.agentImportsDirectory());
  while (const auto entry = imports.next()) {
    if (entry->name.find(".corvane") == std::string_view::npos) continue;
    if (entry->name.find(requestId) != std::string_view::npos) return true;
    // A payload that cannot be read says nothing about this request.
    const auto payload = imports.contentsOf(*entry);
    if (payload && payload->find(requestId) != std::string_view::npos && isValidUtf8(*payload)) {
      return true;
    }
  }
  return false;
}

AnyCodable::Array recentResults(const AgentPaths& paths, FileTime now) {
  AnyCodable::Array summaries;
  const auto folder = paths.agentResultsDirectory();
  for (const auto& file : newestFiles(folder)) {
    const auto result = readResult(folder / file.name);
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
