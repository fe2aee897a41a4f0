#include "corvane_mcp/results/StepTraceChoice.h"

#include <string>

#include "CorvaneCore/json/JsonReader.h"
#include "corvane_mcp/trace/TraceImageReader.h"

namespace corvane {

namespace {

std::vector<ContentBlock> explain(std::string text) {
  return {ContentBlock::text(std::move(text))};
}

}  // namespace

std::vector<ContentBlock> StepTraceChoice::blocks(std::string_view rawJSON) const {
  const JsonObject result = readMembers(rawJSON, {"trace", "tests"});
  const auto* trace = result.findAs<JsonObject>("trace");
  if (testIndex) {
    const auto* tests = result.findAs<AnyCodable::Array>("tests");
    const std::size_t count = tests ? tests->size() : 0;
    const std::string index = std::to_string(*testIndex);
    if (*testIndex < 0 || static_cast<std::uint64_t>(*testIndex) >= count) {
      return explain("(traceTestIndex " + index + " is out of range — this run carries " +
                     std::to_string(count) + " test(s), 0-based)");
    }
    trace = (*tests)[static_cast<std::size_t>(*testIndex)].findAs<JsonObject>("trace");
    if (!trace) {
      return explain("(no per-test trace for tests[" + index +
                     "] — the run may predate per-test trace support)");
    }
  }
  const auto* folder = trace ? trace->findAs<std::string>("artifactsDir") : nullptr;
  if (!folder) {
    return explain(
        "(no step-trace for this run — the run may predate trace support or produced no capture "
        "session)");
  }
  const auto* failed = trace->findAs<std::int64_t>("failedStepIndex");
  const auto* last = trace->findAs<std::int64_t>("lastStepIndex");
  const auto* step = stepIndex ? &*stepIndex : failed ? failed : last;
  if (!step) {
    return explain(
        "(run has a capture session but no step indices; pass traceStepIndex to pick a step)");
  }
  return TraceImageReader::blocks(*folder, *step);
}

}  // namespace corvane
