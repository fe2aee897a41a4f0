#include "corvane_mcp/results/StepTraceChoice.h"

#include <string>

#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "corvane_mcp/trace/TraceImageReader.h"

namespace corvane {

namespace {

std::vector<ContentBlock> explain(std::string text) {
  return {ContentBlock::text(std::move(text))};
}

}  // namespace

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
