#include "corvane_standin/exploration/ExploreJob.h"

#include <cmath>
#include <utility>

#include "corvane_standin/steps/Steps.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

namespace {

std::string credits(double amount) {
  return std::to_string(static_cast<std::int64_t>(std::round(amount))) + " credits";
}

}  // namespace

ExploreJob::ExploreJob(AgentExploreRequest exploreRequest, const Services& services)
    : Job(exploreRequest.requestId, "explore_flow", "exploration"),
      request(std::move(exploreRequest)),
      services(services),
      stopwatch(services.clock) {
  state.projectName = request.projectName;
}

Job::Advance ExploreJob::advance() {
  if (stage == Stage::waiting) {
    begin();
    return Advance::changed;
  }
  const auto& settings = services.settings;
  const bool isBuilding = stage == Stage::building;
  const bool isDone =
      stopwatch.hasReached(isBuilding ? settings.buildSeconds : settings.stepSeconds);
  if (cancelRequested) {
    end(RunStatus::cancelled, "The exploration was cancelled." + keptTests());
  } else if (!isDone) {
    return Advance::waited;
  } else {
    isBuilding ? startAuthoring() : toNextStep();
  }
  return Advance::changed;
}

void ExploreJob::begin() {
  auto& store = services.workspace;
  try {
    if (needsProject(request, store.workspace())) {
      store.update(
          [this](AgentContext& workspace) { addProject(workspace, ProjectIdentity::of(request)); });
    }
    plan = planExploration(request, store.workspace());
  } catch (const RequestRefused& refused) {
    return endRefused(refused);
  }
  state.platform = plan->platform;
  plan->builds ? build() : startAuthoring();
}

void ExploreJob::build() {
  stopwatch.restart();
  stage = Stage::building;
  enter(RunStatus::building);
  state.message = "Building and installing " + inQuotes(request.projectName) + ".";
}

void ExploreJob::startAuthoring() {
  stage = Stage::authoring;
  enter(RunStatus::authoring);
  state.appUnderTest = plan->app;
  AgentRunResult::Progress progress;
  progress.totalSteps = static_cast<std::int64_t>(plan->stepCount());
  state.progress = progress;
  if (canAffordStep()) showActivity();
}

void ExploreJob::toNextStep() {
  const auto& test = plan->tests[goal];
  creditsSpent += services.settings.creditsPerExploredStep;
  state.progress->lastStepTitle = stepTitle(test.steps[step].type);
  state.progress->lastStepStatus = "passed";
  ++step;
  if (step == test.steps.size()) {
    file(test, std::nullopt);
    ++goal;
    step = 0;
  }
  if (goal == plan->tests.size()) return end(RunStatus::authored, "Explored." + keptTests());
  if (canAffordStep()) showActivity();
}

bool ExploreJob::canAffordStep() {
  const double after = creditsSpent + services.settings.creditsPerExploredStep;
  const bool overBudget = request.maxCreditSpend && after > *request.maxCreditSpend;
  if (!overBudget && after <= services.creditBalance) return true;
  keepPartialTest();
  const std::string reason =
      overBudget ? "Stopped at the budget of " + credits(*request.maxCreditSpend) + "."
                 : "Stopped because the credits have run out.";
  if (authored.empty()) {
    endBlocked(overBudget ? "budgetExceeded" : "insufficientCredits",
               reason + " Nothing was authored yet.");
  } else {
    end(RunStatus::warning, reason + keptTests());
  }
  return false;
}

void ExploreJob::showActivity() {
  stopwatch.restart();
  const auto& test = plan->tests[goal];
  state.progress->currentStep = state.progress->currentStep + 1;
  state.message = "Goal " + std::to_string(goal + 1) + " of " + std::to_string(plan->tests.size()) +
                  ", " + inQuotes(test.name) + ": " + test.steps[step].description;
}

void ExploreJob::file(AgentContext::TestContext test, std::optional<double> completionPercent) {
  test.parameterNames = parametersOf(test.steps);
  services.workspace.update([&](AgentContext& workspace) {
    auto& project = requireProject(workspace, request.projectName);
    const auto& filed = fileTest(project, std::move(test), std::nullopt, services.ids);
    chartPath(project.worldMap, filed.name, filed.steps);
    authored.push_back(authoredTest(filed));
  });
  authored.back().completionPercent = completionPercent;
}

void ExploreJob::keepPartialTest() {
  if (step == 0) return;
  auto test = plan->tests[goal];
  const double percent = 100.0 * static_cast<double>(step) / static_cast<double>(test.steps.size());
  test.steps.resize(step);
  file(std::move(test), std::round(percent));
}

void ExploreJob::end(RunStatus status, std::string message) {
  Job::end(status, std::move(message));
  if (!plan) return;
  if (!authored.empty()) {
    if (authored.size() == 1) state.authoredTest = authored.front();
    state.authoredTests = authored;
  }
  services.creditBalance -= creditsSpent;
  state.creditsSpent = creditsSpent;
  state.creditBalance = services.creditBalance;
}

std::string ExploreJob::keptTests() const {
  if (authored.empty()) return " No test was authored.";
  std::string text = " Authored:";
  for (const auto& test : authored) {
    text += (&test == &authored.front() ? " " : ", ") + inQuotes(test.testName);
    if (test.completionPercent) {
      text += " (partial, " + std::to_string(static_cast<int>(*test.completionPercent)) + "%)";
    }
  }
  return text + ".";
}

}  // namespace corvane::standin
