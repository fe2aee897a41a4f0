#include "corvane_mcp/results/ResultTexts.h"

#include <algorithm>
#include <array>

#include "CorvaneCore/json/JsonErrors.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

std::optional<std::string> queuedLine(const JsonObject& result) {
  const auto* position = result.findAs<std::int64_t>("queuePosition");
  if (!position) return std::nullopt;
  return "queued — position " + std::to_string(*position);
}

std::optional<std::string> runningLine(const JsonObject& result) {
  const auto* progress = result.findAs<JsonObject>("progress");
  if (!progress) return std::nullopt;
  const auto* current = progress->findAs<std::int64_t>("currentStep");
  const auto* total = progress->findAs<std::int64_t>("totalSteps");
  if (!current || !total) return std::nullopt;
  std::string line = "running — step " + std::to_string(*current) + "/" + std::to_string(*total);
  if (const auto* title = progress->findAs<std::string>("lastStepTitle")) line += ": " + *title;
  if (const auto* status = progress->findAs<std::string>("lastStepStatus")) line += " " + *status;
  return line;
}

std::optional<std::string> authoredLine(const JsonObject& result, const std::string& status) {
  const auto* tests = result.findAs<AnyCodable::Array>("authoredTests");
  if (!tests) return std::nullopt;
  std::string names;
  for (const auto& test : *tests) {
    const auto* name = test.findAs<std::string>("testName");
    const auto* steps = test.findAs<std::int64_t>("stepCount");
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

}  // namespace

std::string ResultTexts::progressLine(const ResultFileStore::Snapshot& snapshot) {
  const std::string& status = snapshot.status;
  const JsonObject result =
      readMembers(snapshot.rawJSON, {"queuePosition", "progress", "authoredTests", "message"});
  std::optional<std::string> line;
  if (status == "queued") line = queuedLine(result);
  if (status == "running") line = runningLine(result);
  if (status == "authored" || status == "warning") line = authoredLine(result, status);
  if (line) return *line;
  const auto* message = result.findAs<std::string>("message");
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

}  // namespace corvane
