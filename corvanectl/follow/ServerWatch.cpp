#include "corvanectl/follow/ServerWatch.h"

#include <algorithm>

#include "CorvaneCore/json/LenientReading.h"

namespace corvane::ctl {

namespace {

/// What the answer to a last look may need beyond the user's time.
constexpr Seconds lastAnswer{2};

/// The ids of the runs of a project that get_status tells of and that are over, newest first.
std::vector<std::string> runsOver(std::string_view statusAnswer, std::string_view projectName) {
  std::vector<std::string> ids;
  const AnyCodable status = readJson(AnswerTexts::snapshotIn(statusAnswer));
  const auto* requests = status.findAs<AnyCodable::Array>("recentRequests");
  if (!requests) return ids;
  for (const AnyCodable& each : *requests) {
    const auto* project = findField<&AgentRunResult::projectName>(each);
    const auto* terminal = findField<&AgentRunResult::terminal>(each);
    const auto* id = findField<&AgentRunResult::requestId>(each);
    if (id && project && *project == projectName && terminal && *terminal) ids.push_back(*id);
  }
  return ids;
}

void addDurations(const AgentRunResult& result, TestDurations& durations) {
  for (const auto& test : result.tests.value_or(std::vector<AgentRunResult::Test>())) {
    const bool whole = test.status == "passed" || test.status == "warning";
    if (whole) durations.try_emplace(test.testName, test.durationSeconds);
  }
}

}  // namespace

RequestLook ServerWatch::look(Seconds wait) {
  const auto waitSeconds = std::chrono::ceil<std::chrono::seconds>(wait).count();
  const auto result = ToolResult::from(client.callTool(
      "get_result", AnyCodable::Object{{"requestId", requestId}, {"waitSeconds", waitSeconds}},
      answerDeadline(wait)));
  RequestLook look = RequestLook::from(result.firstText(), result.isError);
  look.blockCount = result.content.size();
  return look;
}

bool ServerWatch::appIsRunning() {
  const auto result = ToolResult::from(
      client.callTool("get_status", AnyCodable::Object(), answerDeadline(Seconds(0))));
  // A server that does not say keeps nobody from waiting.
  return AnswerTexts::readAppState(result.firstText()).value_or(true);
}

Deadline ServerWatch::answerDeadline(Seconds wait) const {
  const Deadline usual = after(wait + patience.answer);
  if (patience.end == never) return usual;
  return std::min(usual, std::max(patience.end, std::chrono::steady_clock::now()) +
                             std::chrono::duration_cast<Deadline::duration>(lastAnswer));
}

TestDurations earlierDurations(McpClient& client, std::string_view projectName, Seconds patience) {
  const auto ask = [&](std::string_view tool, AnyCodable::Object arguments) {
    return ToolResult::from(client.callTool(tool, std::move(arguments), after(patience)));
  };
  TestDurations durations;
  try {
    const ToolResult status = ask("get_status", {});
    for (const std::string& id : runsOver(status.firstText(), projectName)) {
      const ToolResult answer = ask("get_result", {{"requestId", id}});
      const auto look = RequestLook::from(answer.firstText(), answer.isError);
      if (look.result) addDurations(*look.result, durations);
    }
  } catch (const DecodeError&) {
    // A status of another form tells of no runs.
  }
  return durations;
}

}  // namespace corvane::ctl
