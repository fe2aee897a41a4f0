#include "corvane_standin/imports/ImportJob.h"

#include <algorithm>
#include <utility>

#include "CorvaneCore/authoring/TestValidator.h"
#include "corvane_standin/imports/ReferenceCheck.h"
#include "corvane_standin/imports/TestImport.h"
#include "corvane_standin/workspace/Changes.h"
#include "corvane_standin/workspace/Lookup.h"

namespace corvane::standin {

namespace {

constexpr std::string_view source = "create_test";

std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

ValidationResult check(const AgentTestSchema& payload, const AgentContext& workspace) {
  auto result = TestValidator::validate(payload);
  auto broken = brokenReferences(payload, workspace);
  std::move(broken.begin(), broken.end(), std::back_inserter(result.issues));
  return result;
}

}  // namespace

ImportJob::ImportJob(std::string requestId, AgentTestSchema importedPayload,
                     const Services& services)
    : Job(requestId, source, "import"), payload(std::move(importedPayload)), services(services) {
  state.projectName = payload.projectName;
}

Job::Advance ImportJob::advance() {
  if (run) return advanceRun();
  if (!checking) {
    beginChecking();
  } else if (cancelRequested) {
    end(RunStatus::cancelled, "Cancelled before the tests were imported.");
  } else if (!checking->hasReached(services.settings.stepSeconds)) {
    return Advance::waited;
  } else {
    fileOrReject();
  }
  return Advance::changed;
}

void ImportJob::beginChecking() {
  checking.emplace(services.clock);
  enter(RunStatus::validating);
  state.message = "Checking " + counted(payload.tests.size(), "imported test") + ".";
}

void ImportJob::fileOrReject() {
  auto result = check(payload, services.workspace.workspace());
  if (!result.issues.empty()) state.validationIssues = result.issues;
  if (result.hasErrors()) {
    return end(
        RunStatus::importFailed,
        "Nothing was imported: " + counted(result.errors().size(), "error") + " in the payload.");
  }
  std::vector<std::string> names;
  services.workspace.update(
      [&](AgentContext& workspace) { names = importTests(payload, workspace); });
  const auto& project = requireProject(services.workspace.workspace(), payload.projectName);
  if (names.size() == 1) state.authoredTest = authoredTest(requireTest(project, names.front()));
  if (payload.autoRun.value_or(true)) return startRun(std::move(names));
  end(RunStatus::imported,
      "Imported " + counted(names.size(), "test") + " into " + inQuotes(payload.projectName) + ".");
}

void ImportJob::startRun(std::vector<std::string> testNames) {
  AgentRunRequest request;
  request.requestId = id();
  request.projectName = payload.projectName;
  request.target.choice = AgentRunRequest::Target::TestsByName{std::move(testNames)};
  request.buildFirst = payload.buildFirst.value_or(true);
  request.targetPlatform = payload.targetPlatform;
  request.params.emplace();
  for (const auto& test : payload.tests) {
    if (test.parameterValues)
      request.params->insert(test.parameterValues->begin(), test.parameterValues->end());
  }
  run.emplace(std::move(request), services, source);
  (void)advanceRun();
}

Job::Advance ImportJob::advanceRun() {
  if (cancelRequested) run->cancel();
  const auto advance = run->advance();
  takeOverRunState();
  return advance;
}

void ImportJob::end(RunStatus status, std::string message) {
  if (!run) return Job::end(status, std::move(message));
  run->end(status, std::move(message));
  takeOverRunState();
}

void ImportJob::takeOverRunState() {
  auto issues = std::move(state.validationIssues);
  auto authored = std::move(state.authoredTest);
  state = run->result();
  state.validationIssues = std::move(issues);
  state.authoredTest = std::move(authored);
}

}  // namespace corvane::standin
