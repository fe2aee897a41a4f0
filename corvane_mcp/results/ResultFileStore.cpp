#include "corvane_mcp/results/ResultFileStore.h"

#include <algorithm>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

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
    constexpr std::size_t roomForHeader = 1024;
    snapshot.rawJSON = readFile(file, largestFile, roomForHeader);
    const auto members = readMembers(snapshot.rawJSON, {"status", "terminal"});
    const auto* status = members.findAs<std::string>("status");
    if (!status) return std::nullopt;
    snapshot.status = *status;
    const auto* stated = members.findAs<bool>("terminal");
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
  for (const auto& entry : listVisible(paths.agentImportsDirectory())) {
    const std::string name = entry.filename();
    if (name.find(".corvane") == std::string::npos) continue;
    if (name.find(requestId) != std::string::npos) return true;
    try {
      const std::string payload = readFile(entry);
      if (isValidUtf8(payload) && payload.find(requestId) != std::string::npos) return true;
    } catch (const FileError&) {
      // A payload that cannot be read says nothing about this request.
    }
  }
  return false;
}

}  // namespace corvane
