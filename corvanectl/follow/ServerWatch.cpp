#include "corvanectl/follow/ServerWatch.h"

#include <algorithm>

#include "CorvaneCore/json/LenientReading.h"

namespace corvane::ctl {

namespace {

/// What the answer to a last look may need beyond the user's time.
constexpr std::chrono::seconds lastAnswer{2};

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
    const bool wasRun =
        test.status == "passed" || test.status == "warning" || test.status == "failed";
    if (wasRun) durations.try_emplace(test.testName, test.durationSeconds);
  }
}

}  // namespace

RequestLook ServerWatch::look(Seconds wait) {
  const auto waitSeconds = std::chrono::ceil<std::chrono::seconds>(wait).count();
  const auto result =
      ask("get_result", {{"requestId", requestId}, {"waitSeconds", waitSeconds}}, wait);
  RequestLook look = RequestLook::from(result.firstText(), result.isError);
  look.blockCount = result.content.size();
  return look;
}

std::optional<Expectation> ServerWatch::expectation() {
  if (!run) return std::nullopt;
  const auto described = ask("describe_project", {{"projectName", run->project}});
  const auto project = describedProject(described.firstText());
  auto plan = project ? planOf(*project, run->target) : std::nullopt;
  if (!plan) return std::nullopt;
  return Expectation{*std::move(plan), run->measured ? earlierDurations() : TestDurations()};
}

bool ServerWatch::appIsRunning() {
  // A server that does not say keeps nobody from waiting.
  return AnswerTexts::readAppState(ask("get_status", {}).firstText()).value_or(true);
}

TestDurations ServerWatch::earlierDurations() {
  TestDurations durations;
  try {
    for (const std::string& id : runsOver(ask("get_status", {}).firstText(), run->project)) {
      const ToolResult answer = ask("get_result", {{"requestId", id}});
      const auto look = RequestLook::from(answer.firstText(), answer.isError);
      if (look.result) addDurations(*look.result, durations);
    }
  } catch (const DecodeError&) {
    // A status of another form tells of no runs.
  }
  return durations;
}

ToolResult ServerWatch::ask(std::string_view tool, AnyCodable::Object arguments, Seconds wait) {
  Deadline deadline = after(wait + patience.answer);
  if (patience.end != never) {
    const Deadline last = std::max(patience.end, std::chrono::steady_clock::now());
    deadline = std::min(deadline, last + lastAnswer);
  }
  return ToolResult::from(client.callTool(tool, std::move(arguments), deadline));
}

}  // namespace corvane::ctl
