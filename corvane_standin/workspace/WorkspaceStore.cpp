#include "corvane_standin/workspace/WorkspaceStore.h"

#include <algorithm>
#include <cmath>
#include <system_error>
#include <utility>

#include "corvane_standin/program/StandInPaths.h"
#include "corvane_standin/workspace/FirstWorkspace.h"
#include "corvane_standin/workspace/Lookup.h"

namespace corvane::standin {

namespace {

/// How often the last runs alternated between passing and failing, recent ones counting most.
double flakinessAfter(double before, bool alternated) {
  constexpr double weightOfLastRun = 0.25;
  const double after = before + weightOfLastRun * ((alternated ? 1.0 : 0.0) - before);
  return std::round(after * 100) / 100;
}

}  // namespace

WorkspaceStore::WorkspaceStore(const AgentPaths& paths, const Clock& clock, const StandInLog& log)
    : paths(paths), clock(clock), log(log) {
  load();
}

void WorkspaceStore::load() {
  const auto file = paths.agentContextFile();
  try {
    context = fileExists(file) ? AgentContext::read(file) : firstWorkspace();
  } catch (const std::runtime_error& error) {
    const auto aside = StandInPaths(paths).unreadableContextFile();
    log.warn("the workspace in context.json is set aside as " + displayPath(aside) + ": " +
             error.what());
    std::error_code ignored;
    std::filesystem::rename(file, aside, ignored);
    context = firstWorkspace();
  }
}

void WorkspaceStore::record(const std::string& projectName, const AgentRunResult::Test& outcome) {
  auto* project = findByName(context.projects, projectName);
  auto* test = project ? findById(project->tests, outcome.testId) : nullptr;
  if (!test) return;
  const bool failed = outcome.status == "failed";
  const auto [last, first] = lastRunFailed.try_emplace(outcome.testId, failed);
  test->flakinessScore =
      flakinessAfter(test->flakinessScore.value_or(0), !first && last->second != failed);
  constexpr double flakyFrom = 0.3;
  test->isFlaky = *test->flakinessScore >= flakyFrom;
  last->second = failed;
  if (outcome.status == "passed") test->verified = true;
  if (failed) {
    const auto step = std::find_if(outcome.steps.begin(), outcome.steps.end(),
                                   [](const auto& each) { return each.status == "failed"; });
    if (step != outcome.steps.end()) {
      test->lastFailure = AgentContext::LastFailure{step->title, step->failureReason};
    }
  }
  publishAgain();
}

void WorkspaceStore::update(const std::function<void(AgentContext&)>& change) {
  AgentContext changed = context;
  change(changed);
  context = std::move(changed);
  publishAgain();
}

void WorkspaceStore::publishAgain() {
  // A file that was taken away stays so: its home is being deleted.
  if (fileExists(paths.agentContextFile())) publish();
}

void WorkspaceStore::publish() {
  context.updatedAt = clock.date();
  try {
    context.write(paths);
  } catch (const std::runtime_error& error) {
    log.warn(std::string("the workspace was not published: ") + error.what());
  }
}

}  // namespace corvane::standin
