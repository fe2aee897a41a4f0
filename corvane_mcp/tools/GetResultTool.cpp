#include <algorithm>
#include <iterator>

#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "CorvaneCore/text/Uuid.h"
#include "corvane_mcp/results/ResultFileStore.h"
#include "corvane_mcp/results/ResultTexts.h"
#include "corvane_mcp/tools/ToolArguments.h"
#include "corvane_mcp/tools/Tools.h"

namespace corvane {

namespace {

constexpr std::string_view name = "get_result";

constexpr std::string_view description =
    R"(Fetch the status and results of a Corvane run started by create_test or run_test. The requestIds of explore_flow and of the library tools work the same way.

Results are progressive (received → queued → building → running → terminal). Terminal statuses: passed, failed, warning, blocked, cancelled, error (and imported, for create_test with autoRun=false).

waitSeconds (0-240, default 0) long-polls inside this single call: it returns as soon as the status is terminal, or with the latest snapshot when the time is up — that timeout is NOT an error; just call get_result again. Recommended loop: get_result with waitSeconds 120, repeated until the status is terminal. If your client's per-call timeout is shorter than that, pass a smaller value (e.g. 45).

Reading the answer:
  • The result JSON is compact; failed steps carry an AI-written failureReason.
  • status "blocked" means an action is needed from you or the user: read blocked.code and blocked.message.
  • A step with status "healed" passed only after Corvane adapted to an unexpected screen; audit it with includeStepTrace before you trust the pass.
  • Non-terminal snapshots carry liveness: appRunning and secondsSinceUpdate, and a plain warning when the run died with the app or looks wedged.

includeStepTrace adds before/after screenshots of any executed step as image blocks — by default the failing step, or the last executed one; traceStepIndex picks another step, and traceTestIndex picks the test of a multi-test run. Costs image tokens — request only what you need.)";

using AnswerTexts::Standing;

struct Arguments {
  std::optional<std::string> requestId;
  std::optional<std::int64_t> waitSeconds;
  std::optional<bool> includeStepTrace;
  std::optional<std::int64_t> traceStepIndex;
  std::optional<std::int64_t> traceTestIndex;

  static auto arguments() {
    using A = Arguments;
    return std::tuple(
        argument("requestId", &A::requestId, "The requestId returned by create_test or run_test.")
            .required()
            .with("pattern", RequestIdArgument::pattern),
        argument("waitSeconds", &A::waitSeconds,
                 "Long-poll up to this many seconds for a terminal status. 0 = return the current "
                 "snapshot immediately.")
            .with("minimum", 0)
            .with("maximum", AnswerTexts::longestWaitSeconds)
            .with("default", 0),
        argument("includeStepTrace", &A::includeStepTrace,
                 "Also return before/after screenshots of a step as image blocks. Screenshots "
                 "exist for EVERY executed step (from the run's capture session) — useful to audit "
                 "passing asserts too. Default step: the failing step, or the last executed step "
                 "when the run passed. Token-expensive; request only what you need.")
            .with("default", false),
        argument("traceStepIndex", &A::traceStepIndex,
                 "Optional with includeStepTrace: return this step's screenshots instead of the "
                 "default (failing/last) step's.")
            .with("minimum", 0),
        argument("traceTestIndex", &A::traceTestIndex,
                 "Optional with includeStepTrace on a multi-test run: read this test's capture "
                 "session (0-based index into tests[]). Default: the run's failing-or-last test.")
            .with("minimum", 0));
  }
};

/// Sends a numbered progress notification for every snapshot.
ResultFileStore::OnUpdate progressUpdates(std::optional<ProgressReporter> reporter) {
  if (!reporter) return nullptr;
  return [reporter = std::move(*reporter),
          count = 0](const ResultFileStore::Snapshot& snapshot) mutable {
    reporter.emit(++count, std::nullopt, ResultTexts::progressLine(snapshot));
  };
}

/// No result has it: the status of a request that nobody has taken.
constexpr std::string_view pendingStatus = "pending";

std::string pendingText(const std::string& id) {
  const JsonObject result{{std::string(keyOf<&AgentRunResult::requestId>()), id},
                          {std::string(keyOf<&AgentRunResult::status>()), pendingStatus},
                          {std::string(keyOf<&AgentRunResult::terminal>()), false}};
  return AnswerTexts::statusLine(pendingStatus, Standing::pending) + "\n\n" + toJson(result) +
         "\n\nThe request file is still waiting in Corvane's drop folder. Is Corvane.app running "
         "and signed in? (create_test/run_test launch it, but a cold start takes a few seconds — "
         "call get_result again with waitSeconds.)";
}

std::string unknownText(const std::string& id) {
  return std::string(AnswerTexts::unknownRequestCode) + "\n\nNo result for requestId " + id +
         ". Either the id is wrong, the result was pruned (results are kept ~7 days), or your "
         "Corvane.app predates run feedback — update Corvane if get_result never finds results for "
         "fresh requests.";
}

std::string unreadableText(const std::filesystem::path& path) {
  return "error:result_unreadable\n\nA result file exists but could not be parsed: " +
         displayPath(path);
}

/// What stands before the result file's text.
std::string snapshotHeader(const ResultFileStore::Snapshot& snapshot,
                           const ToolServices& services) {
  const auto line = [&snapshot](Standing standing, std::int64_t seconds = 0) {
    return AnswerTexts::statusLine(snapshot.status, standing, seconds);
  };
  if (snapshot.terminal) return line(Standing::terminal);

  std::optional<std::int64_t> seconds;
  if (snapshot.modifiedAt) seconds = secondsBetween(*snapshot.modifiedAt, services.clock.now());
  const std::string age =
      seconds ? "\nsecondsSinceUpdate: " + std::to_string(*seconds) : std::string();

  if (!services.launcher.isRunning()) {
    return (line(Standing::appNotRunning) + "\nappRunning: false" + age)
        .append(AnswerTexts::runDiedNote);
  }
  if (seconds && *seconds >= staleAfterSeconds) {
    return line(Standing::stale, *seconds) + "\nappRunning: true";
  }
  return line(Standing::inProgress) + "\nappRunning: true" + age;
}

Task<ToolsCallResult> call(Arguments arguments, std::optional<ProgressReporter> progress,
                           ToolServices services) {
  const auto id = parseRequestId(arguments.requestId.value_or(""));
  if (!id) co_return ToolsCallResult::failure(RequestIdArgument::invalidText(arguments.requestId));
  const auto waitSeconds = std::clamp<std::int64_t>(arguments.waitSeconds.value_or(0), 0,
                                                    AnswerTexts::longestWaitSeconds);

  const ResultFileStore store(services.paths, services.clock);
  auto outcome = co_await store.poll(*id, waitSeconds, progressUpdates(std::move(progress)));
  if (std::holds_alternative<ResultFileStore::Pending>(outcome)) {
    co_return ToolsCallResult::success(pendingText(*id));
  }
  if (std::holds_alternative<ResultFileStore::Unknown>(outcome)) {
    co_return ToolsCallResult::failure(unknownText(*id));
  }
  if (const auto* unreadable = std::get_if<ResultFileStore::Unreadable>(&outcome)) {
    co_return ToolsCallResult::failure(unreadableText(unreadable->path));
  }
  auto& snapshot = std::get<ResultFileStore::Snapshot>(outcome);
  const std::string header = snapshotHeader(snapshot, services).append(AnswerTexts::beforeResult);
  std::vector<ContentBlock> further;
  if (auto advice = ResultTexts::interruptAdvice(snapshot)) {
    further.push_back(ContentBlock::text(std::move(*advice)));
  }
  if (arguments.includeStepTrace.value_or(false)) {
    const StepTraceChoice choice{arguments.traceStepIndex, arguments.traceTestIndex};
    for (auto& block : choice.blocks(snapshot.rawJSON)) further.push_back(std::move(block));
  }
  // Results can be large, so the one text there is becomes the answer.
  auto result = ToolsCallResult::success(std::move(snapshot.rawJSON.insert(0, header)));
  std::move(further.begin(), further.end(), std::back_inserter(result.content));
  co_return result;
}

}  // namespace

MCPTool makeGetResultTool(const ToolServices& services) {
  return {name, description, [] { return schemaOf<Arguments>(OtherProperties::refused); },
          [services](ToolCall sent) {
            return call(takeArguments<Arguments>(sent, name), std::move(sent.progress), services);
          }};
}

}  // namespace corvane
