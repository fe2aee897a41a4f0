#include "corvane_mcp/results/ResultTexts.h"

#include <algorithm>
#include <array>

#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/trace/TraceImageReader.h"

namespace corvane {

namespace {

using Progress = AgentRunResult::Progress;
using Authored = AgentRunResult::AuthoredTestInfo;

std::optional<std::string> queuedLine(const JsonObject& result) {
  const auto* position = findField<&AgentRunResult::queuePosition>(result);
  if (!position) return std::nullopt;
  return "queued — position " + std::to_string(*position);
}

std::optional<std::string> runningLine(const JsonObject& result) {
  const auto* progress = findField<&AgentRunResult::progress>(result);
  if (!progress) return std::nullopt;
  const auto* current = findField<&Progress::currentStep>(*progress);
  const auto* total = findField<&Progress::totalSteps>(*progress);
  if (!current || !total) return std::nullopt;
  std::string line = "running — step " + std::to_string(*current) + "/" + std::to_string(*total);
  if (const auto* title = findField<&Progress::lastStepTitle>(*progress)) line += ": " + *title;
  if (const auto* status = findField<&Progress::lastStepStatus>(*progress)) line += " " + *status;
  return line;
}

std::optional<std::string> authoredLine(const JsonObject& result, const std::string& status) {
  const auto* tests = findField<&AgentRunResult::authoredTests>(result);
  if (!tests) return std::nullopt;
  std::string names;
  for (const auto& test : *tests) {
    const auto* name = findField<&Authored::testName>(test);
    const auto* steps = findField<&Authored::stepCount>(test);
    if (!name || !steps) continue;
    if (!names.empty()) names += ", ";
    names += "'" + *name + "' (" + std::to_string(*steps) + " steps)";
  }
  return status + " — " + std::to_string(tests->size()) +
         (tests->size() == 1 ? " test" : " tests") + ": " + names +
         ". Inspect each with describe_project, then run_test / compose.";
}

/// Words of which one at least stands in a result when something of the system covered the screen.
constexpr std::array<std::string_view, 10> interruptWords{
    "permission", "dialog",       "prompt", "sheet",  "alert",
    "allow",      "notification", "rating", "pop-up", "popup"};

std::vector<ContentBlock> explain(std::string text) {
  return {ContentBlock::text(std::move(text))};
}

}  // namespace

std::string ResultTexts::progressLine(const ResultFileStore::Snapshot& snapshot) {
  const std::string& status = snapshot.status;
  const JsonObject result =
      readMembers<&AgentRunResult::queuePosition, &AgentRunResult::progress,
                  &AgentRunResult::authoredTests, &AgentRunResult::message>(snapshot.rawJSON);
  std::optional<std::string> line;
  if (status == "queued") line = queuedLine(result);
  if (status == "running") line = runningLine(result);
  if (status == "authored" || status == "warning") line = authoredLine(result, status);
  if (line) return *line;
  const auto* message = findField<&AgentRunResult::message>(result);
  return message ? status + " — " + *message : status;
}

std::optional<std::string> ResultTexts::interruptAdvice(const ResultFileStore::Snapshot& snapshot) {
  if (!snapshot.terminal || snapshot.status != "failed") return std::nullopt;
  const std::string lower = asciiLowercase(snapshot.rawJSON);
  const bool interrupted =
      std::any_of(interruptWords.begin(), interruptWords.end(),
                  [&](std::string_view word) { return lower.find(word) != std::string::npos; });
  if (!interrupted) return std::nullopt;
  return "---\nIF THE FAILURE WAS AN OS INTERRUPT covering the screen (location/notification "
         "permission dialog, rating prompt, first-run sheet — read the failed step's "
         "`failureReason` field, or includeStepTrace for screenshots): that interrupt is the app's "
         "REAL behavior. FIX THE TEST, NOT THE DEVICE — re-send create_test (same projectName + "
         "testName updates in place) and either attach a recovery branch to the blocked step "
         "(`children` with previousStepCondition 'previousFailed' that dismiss the dialog and "
         "retry the step; skipped on normal runs) or set selfHealingMode 'fullTest'. Do NOT "
         "pre-grant permissions or reset the simulator out-of-band to force a pass — a test that "
         "only passes on a pre-conditioned device fails on every fresh device, CI box, and cold "
         "start.";
}

std::vector<ContentBlock> StepTraceChoice::blocks(std::string_view rawJSON) const {
  using TraceInfo = AgentRunResult::TraceInfo;
  const JsonObject result = readMembers<&AgentRunResult::trace, &AgentRunResult::tests>(rawJSON);
  const auto* trace = findField<&AgentRunResult::trace>(result);
  if (testIndex) {
    const auto* tests = findField<&AgentRunResult::tests>(result);
    const std::size_t count = tests ? tests->size() : 0;
    const std::string index = std::to_string(*testIndex);
    if (*testIndex < 0 || static_cast<std::uint64_t>(*testIndex) >= count) {
      return explain("(traceTestIndex " + index + " is out of range — this run carries " +
                     std::to_string(count) + " test(s), 0-based)");
    }
    trace = findField<&AgentRunResult::Test::trace>((*tests)[static_cast<std::size_t>(*testIndex)]);
    if (!trace) {
      return explain("(no per-test trace for tests[" + index +
                     "] — the run may predate per-test trace support)");
    }
  }
  const auto* folder = trace ? findField<&TraceInfo::artifactsDir>(*trace) : nullptr;
  if (!folder) {
    return explain(
        "(no step-trace for this run — the run may predate trace support or produced no capture "
        "session)");
  }
  const auto* failed = findField<&TraceInfo::failedStepIndex>(*trace);
  const auto* last = findField<&TraceInfo::lastStepIndex>(*trace);
  const auto* step = stepIndex ? &*stepIndex : failed ? failed : last;
  if (!step) {
    return explain(
        "(run has a capture session but no step indices; pass traceStepIndex to pick a step)");
  }
  return TraceImageReader::blocks(*folder, *step);
}

}  // namespace corvane
