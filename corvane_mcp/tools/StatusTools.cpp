#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "CorvaneCore/workspace/AgentActivity.h"
#include "corvane_mcp/results/ResultFileStore.h"
#include "corvane_mcp/tools/ToolArguments.h"
#include "corvane_mcp/tools/Tools.h"

namespace corvane {

namespace {

namespace health {

constexpr std::string_view name = "health";

constexpr std::string_view description =
    "Confirms the corvane-mcp server is alive. Returns the path to the bundled Corvane.app and "
    "the AgentImports drop folder.";

ToolsCallResult call(const ToolServices& services) {
  const AgentPaths& paths = services.paths;
  std::string text = "corvane-mcp is healthy.";
  text += "\n  Corvane.app:      " + Dispatch::describeApp(services.launcher.findCorvaneApp());
  text += "\n  AgentImports:     " + displayPath(paths.agentImportsDirectory());
  text += "\n  AgentRunRequests: " + displayPath(paths.agentRunRequestsDirectory());
  text += "\n  AgentResults:     " + displayPath(paths.agentResultsDirectory());
  text += "\n  MCP log file:     " + displayPath(paths.logFile());
  return ToolsCallResult::success(std::move(text));
}

}  // namespace health

namespace get_status {

constexpr std::string_view name = "get_status";

constexpr std::string_view description =
    R"(Ask Corvane "what are you doing right now?" — no requestId needed. Returns:
  • whether Corvane.app is running
  • the agent request it is executing, and the FIFO queue behind it
  • whether non-agent work holds the run gate (a user-initiated run or a scheduled trigger) — run_test queues behind it
  • whether an authoring session is live in the app
  • the bound simulator/emulator
  • the most recent requestIds with their statuses — recover a lost requestId here

Use it to REACT to anomalies instead of polling blind: before you dispatch work, when get_result looks stale or a request stays queued longer than expected, after you lost a requestId. For following a specific run, get_result remains the right tool — it long-polls and carries per-step detail.)";

/// The published activity as plain JSON, so that whatever a newer app adds passes through; nothing
/// when there is none or it makes no sense.
std::optional<AnyCodable> readActivity(const std::filesystem::path& file) {
  try {
    AnyCodable activity = readJson(readFile(file));
    if (activity.object()) return activity;
  } catch (const FileError&) {
    return std::nullopt;
  } catch (const DecodeError&) {
    return std::nullopt;
  }
  return std::nullopt;
}

std::string_view noteWithoutActivity(bool appRunning) {
  return appRunning ? "note: Corvane is running but has not published activity.json — it may "
                      "predate get_status; the per-request get_result surface still works."
                    : "note: Corvane.app is not running. run_test/create_test/explore_flow launch "
                      "it automatically.";
}

/// How long ago the app last touched its snapshot, when it says so.
std::optional<std::int64_t> secondsSinceUpdate(const AnyCodable& activity, FileTime now) {
  const auto* text = findField<&AgentActivity::updatedAt>(activity);
  const auto updatedAt = text ? parseDate(*text) : std::nullopt;
  if (!updatedAt) return std::nullopt;
  return secondsBetween(*updatedAt, now);
}

/// A warning about a snapshot that claims work which does not move.
std::optional<std::string> livenessWarning(const AnyCodable& activity, std::int64_t age,
                                           bool appRunning) {
  const AnyCodable* active = rawField<&AgentActivity::active>(activity);
  if (!active || active->isNull()) return std::nullopt;
  if (!appRunning) {
    return "warning: Corvane.app is not running — the 'active' work in this snapshot died with it "
           "and will not progress.";
  }
  if (age < staleAfterSeconds) return std::nullopt;
  return "warning: activity claims active work but has not been touched in " + std::to_string(age) +
         "s (heartbeat is ~20s) — Corvane may be wedged.";
}

ToolsCallResult call(const ToolServices& services) {
  const bool appRunning = services.launcher.isRunning();
  const FileTime now = services.clock.now();
  JsonObject status{{"appRunning", appRunning}};
  std::string notes;
  if (auto activity = readActivity(services.paths.agentActivityFile())) {
    if (const auto age = secondsSinceUpdate(*activity, now)) {
      status.set("activitySecondsSinceUpdate", *age);
      if (const auto warning = livenessWarning(*activity, *age, appRunning)) {
        notes = *warning + "\n\n";
      }
    }
    status.set("activity", std::move(*activity));
  } else {
    notes.append(noteWithoutActivity(appRunning)).append("\n\n");
  }
  status.set("recentRequests", recentResults(services.paths, now));

  std::string text = AnswerTexts::appStateLine(appRunning) + "\n\n";
  text += notes + toJson(std::move(status));
  return ToolsCallResult::success(std::move(text));
}

}  // namespace get_status

}  // namespace

MCPTool makeHealthTool(const ToolServices& services) {
  using namespace health;
  return {name, description, [] { return schemaOf<NoArguments>(OtherProperties::refused); },
          [services](const ToolCall&) { return call(services); }};
}

MCPTool makeGetStatusTool(const ToolServices& services) {
  using namespace get_status;
  return {name, description, [] { return schemaOf<NoArguments>(OtherProperties::refused); },
          [services](const ToolCall&) { return call(services); }};
}

}  // namespace corvane
