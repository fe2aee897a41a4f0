#pragma once

#include <string>
#include <utility>

#include "corvanectl/report/Report.h"

namespace corvane::testing {

/// The text of a result file of a request that has finished, with more `members`.
[[nodiscard]] inline std::string resultText(const std::string& members) {
  return R"({"schemaVersion":3,"requestId":"r1","source":"run_test","terminal":true,)"
         R"("updatedAt":"2026-01-31T12:00:00Z",)" +
         members + "}";
}

[[nodiscard]] inline ctl::Report reportOf(std::string_view status, const std::string& members) {
  return ctl::makeReport("r1", status,
                         resultText("\"status\":\"" + std::string(status) + "\"," + members));
}

/// A run of two tests, of which one failed and the other one needed healing.
[[nodiscard]] inline ctl::Report failedRun() {
  return reportOf("failed", R"("projectName":"Shop","platform":"iOS","message":"One failed",
"appUnderTest":{"bundleId":"com.shop","version":"1.2","build":"45"},"tests":[
{"testId":"1","testName":"Login","status":"passed","durationSeconds":12.34,"steps":[
{"index":0,"title":"TAP","description":"Tap OK","status":"healed","durationSeconds":2}]},
{"testId":"2","testName":"Pay","status":"failed","durationSeconds":3,
"trace":{"artifactsDir":"/captures/2"},"steps":[
{"index":0,"title":"TAP","description":"Tap Cart","status":"passed","durationSeconds":1.5},
{"index":1,"title":"TAP","description":"Tap Pay","status":"failed","failureReason":"No button"},
{"index":2,"title":"WAIT","description":"","status":"skipped"}]}],
"summary":{"tests":2,"testsPassed":1,"durationSeconds":15.34},"creditsSpent":1.5,"creditBalance":20)");
}

/// A step of a test that is made up piece by piece.
[[nodiscard]] inline AgentRunResult::Step step(std::int64_t index, std::string description,
                                               std::string status) {
  AgentRunResult::Step made;
  made.index = index;
  made.title = "TAP";
  made.description = std::move(description);
  made.status = std::move(status);
  return made;
}

}  // namespace corvane::testing
