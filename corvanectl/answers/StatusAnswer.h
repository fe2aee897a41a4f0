#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/workspace/AgentActivity.h"
#include "corvanectl/commands/Session.h"

namespace corvane::ctl {

/// A request that the server tells of.
struct KnownRequest {
  enum class Place { active, queued, ended };

  std::string id;
  Place place = Place::ended;
  /// As its result has it; empty while there is none.
  std::string status;
  /// The tool or the kind of work that it comes from.
  std::optional<std::string> source;
  std::optional<std::string> project;
  /// How long ago its result changed.
  std::optional<std::int64_t> secondsAgo;
};

/// What an answer of get_status says.
struct StatusAnswer {
  bool appRunning = false;
  /// What the app last said of itself; nothing when it has not.
  std::optional<AgentActivity> activity;
  /// How long ago that was.
  std::optional<std::int64_t> secondsSinceHeartbeat;
  /// An app that lives is heard of more often than this, every 20 seconds or so.
  static constexpr std::int64_t longestSilence = 90;
  /// What the app has in hand or in its queue and the five results that changed last: the most
  /// recent request first, as far as can be told. Work of an app that is gone comes last.
  std::vector<KnownRequest> requests;
  /// The answer's JSON, as it came.
  AnyCodable::Object snapshot;
};

/// Asks the server. Throws ProtocolError and what Session::callTool throws.
[[nodiscard]] StatusAnswer askStatus(Session& session);

/// Reads the JSON of such an answer; what has another form than expected counts as absent.
[[nodiscard]] StatusAnswer readStatus(AnyCodable::Object snapshot);

}  // namespace corvane::ctl
