#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/paths/AgentPaths.h"
#include "corvane_mcp/server/Clock.h"

namespace corvane {

/// Answers what the result file of a request says, now or as soon as it turns terminal. Reads the
/// files leniently: only the text, the status and whether it is terminal matter. Never writes.
class ResultFileStore {
 public:
  /// One reading of a result file.
  struct Snapshot {
    /// The file's whole text, exactly as it stands there.
    std::string rawJSON;
    std::string status;
    bool terminal = false;
    std::optional<FileTime> modifiedAt;
  };
  /// A result file exists but could not be parsed.
  struct Unreadable {
    std::filesystem::path path;
  };
  /// There is no result yet, but the request still waits in a drop folder.
  struct Pending {};
  /// There is neither a result nor a waiting request.
  struct Unknown {};
  using Outcome = std::variant<Snapshot, Unreadable, Pending, Unknown>;
  using OnUpdate = std::function<void(const Snapshot&)>;

  /// Both outlive the store and its polls.
  ResultFileStore(const AgentPaths& paths, const Clock& clock) : paths(paths), clock(clock) {}

  /// Waits up to `waitSeconds` for the result to turn terminal; looks at least once. `onUpdate`, if
  /// given, gets every changed non-terminal snapshot, on the polling task.
  [[nodiscard]] Task<Outcome> poll(std::string requestId, std::int64_t waitSeconds,
                                   OnUpdate onUpdate) const;

  /// The file's snapshot; nothing when it cannot be read, is no JSON object or has no status.
  [[nodiscard]] static std::optional<Snapshot> parse(const std::filesystem::path& file);
  /// Whether the request waits to be picked up, as a run request or as an imported test.
  [[nodiscard]] bool requestStillPending(std::string_view requestId) const;

 private:
  const AgentPaths& paths;
  const Clock& clock;
};

/// A line each about the result files that changed last, newest first: what get_status shows so
/// that a lost request id can be found again. At most five; files that change, vanish or make no
/// sense meanwhile are left out.
[[nodiscard]] AnyCodable::Array recentResults(const AgentPaths& paths, FileTime now);

}  // namespace corvane
