#include "corvane_standin/exploration/ExploreJob.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "CorvaneCore/authoring/InteractionType.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/steps/Steps.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

namespace {

using Project = AgentContext::ProjectContext;
using Step = AgentContext::StepSummary;
using Test = AgentContext::TestContext;

/// "2. Open the cart" and "- Open the cart" without what they begin with.
std::string_view withoutBullet(std::string_view line) {
  const auto digits = std::min(line.find_first_not_of("0123456789"), line.size());
  if (digits > 0 && digits < line.size() && (line[digits] == '.' || line[digits] == ')')) {
    return trimWhitespace(line.substr(digits + 1));
  }
  for (const std::string_view bullet : {"- ", "* ", "• "}) {
    if (line.starts_with(bullet)) return trimWhitespace(line.substr(bullet.size()));
  }
  return line;
}

/// Cuts at every separator in turn, but never inside double quotes.
std::vector<std::string> cutIntoClauses(std::string_view text) {
  constexpr std::array<std::string_view, 5> separators{", then ", " then ", ", and ", "; ", ", "};
  std::vector<std::string> clauses(1);
  bool inQuotes = false;
  while (!text.empty()) {
    const auto separator =
        std::find_if(separators.begin(), separators.end(),
                     [text](std::string_view each) { return text.starts_with(each); });
    if (!inQuotes && separator != separators.end()) {
      clauses.emplace_back();
      text.remove_prefix(separator->size());
      continue;
    }
    if (text.front() == '"') inQuotes = !inQuotes;
    clauses.back() += text.front();
    text.remove_prefix(1);
  }
  std::erase_if(clauses, [](const auto& clause) { return trimWhitespace(clause).empty(); });
  return clauses;
}

std::string firstWords(std::string_view text) {
  constexpr std::size_t most = 6;
  const auto words = split(text);
  std::string name;
  for (std::size_t i = 0; i < std::min(most, words.size()); ++i) {
    name += (i == 0 ? "" : " ") + std::string(words[i]);
  }
  while (name.ends_with(',') || name.ends_with('.') || name.ends_with(':')) name.pop_back();
  return name;
}

Goal parseGoal(std::string_view line) {
  constexpr std::size_t longestLabel = 60;
  const auto colon = line.find(": ");
  const bool isLabelled = colon != std::string_view::npos && colon <= longestLabel &&
                          line.substr(0, colon).find('"') == std::string_view::npos;
  const auto body = isLabelled ? trimWhitespace(line.substr(colon + 2)) : line;
  Goal goal;
  goal.clauses = cutIntoClauses(body);
  goal.name = capitalised(isLabelled || goal.clauses.empty() ? std::string(line.substr(0, colon))
                                                             : firstWords(goal.clauses.front()));
  for (auto& clause : goal.clauses) {
    if (clause.ends_with('.')) clause.pop_back();
  }
  return goal;
}

/// What is typed in: the quoted text of the clause or its placeholder, else all after the verb.
std::string typedText(std::string_view clause, std::string_view afterVerb) {
  const auto open = clause.find('"');
  if (open != std::string_view::npos) {
    const auto close = clause.find('"', open + 1);
    if (close != std::string_view::npos) {
      return std::string(clause.substr(open + 1, close - open - 1));
    }
  }
  const auto dollar = clause.find('$');
  if (dollar != std::string_view::npos) {
    return std::string(clause.substr(dollar, clause.find(' ', dollar) - dollar));
  }
  return std::string(afterVerb);
}

Step makeStep(InteractionType type, std::string description) {
  Step step;
  step.type = rawValue(type);
  step.description = std::move(description);
  return step;
}

Step stepFor(std::string_view clause) {
  const auto space = std::min(clause.find(' '), clause.size());
  auto rest = trimWhitespace(clause.substr(space));
  const auto& type = stepTypeOfVerb(asciiLowercase(clause.substr(0, space)));
  switch (type.goalText) {
    case StepType::GoalText::typedText:
      return makeStep(type.type, typedText(clause, rest));
    case StepType::GoalText::withoutVerb:
      if (rest.starts_with("that ")) rest.remove_prefix(5);
      return makeStep(type.type, capitalised(std::string(rest.empty() ? clause : rest)));
    case StepType::GoalText::clause:
      break;
  }
  return makeStep(type.type, capitalised(std::string(clause)));
}

/// The test that the exploration resumes from, if any. The id wins when both are set.
const Test* prefixTest(const AgentExploreRequest& request, const Project& project) {
  if (request.resumeFromTestId) {
    if (const auto* test = findById(project.tests, *request.resumeFromTestId)) return test;
    throw RequestRefused("The project " + inQuotes(project.name) + " has no test with the id " +
                         inQuotes(*request.resumeFromTestId) + " to resume from. " +
                         listing("Tests", project.tests));
  }
  return request.resumeFromTestName ? &requireTest(project, *request.resumeFromTestName) : nullptr;
}

/// The last of `earlier` that the goal names, which then need not be explored again.
const Test* reusedTest(const Goal& goal, const std::vector<Test>& earlier) {
  const Test* reused = nullptr;
  for (const auto& clause : goal.clauses) {
    for (const auto& test : earlier) {
      if (clause.find(test.name) != std::string::npos) reused = &test;
    }
  }
  return reused;
}

/// The clause that only names the reused test is what its runTest step stands for.
Goal withoutReuse(Goal goal, const Test& reused) {
  std::erase_if(goal.clauses, [&reused](const std::string& clause) {
    return clause.find(reused.name) != std::string::npos;
  });
  return goal;
}

std::vector<Test> testsToward(const AgentExploreRequest& request, const Project& project) {
  const auto goals = parseGoals(request.goal);
  const auto* prefix = prefixTest(request, project);
  std::vector<Test> tests;
  for (const auto& goal : goals) {
    Test test;
    test.name = goals.size() == 1 ? request.testName.value_or(goal.name) : goal.name;
    test.description = goal.name;
    test.autoScaffold = true;
    const auto* reused = reusedTest(goal, tests);
    const auto* first = reused ? reused : prefix;
    if (first)
      test.steps.push_back(makeStep(InteractionType::runTest,
                                    stepType(InteractionType::runTest).reading({}, first->name)));
    const auto explored = stepsToward(reused ? withoutReuse(goal, *reused) : goal);
    test.steps.insert(test.steps.end(), explored.begin(), explored.end());
    tests.push_back(std::move(test));
  }
  return tests;
}

}  // namespace

std::vector<Goal> parseGoals(std::string_view text) {
  const auto lines = split(text, "\n");
  std::vector<Goal> goals;
  for (const auto line : lines) {
    const bool isHeading = line.ends_with(':') && lines.size() > 1;
    const auto goal = withoutBullet(line);
    if (!isHeading && !goal.empty()) goals.push_back(parseGoal(goal));
  }
  if (goals.empty() && !lines.empty()) goals.push_back(parseGoal(lines.front()));
  return goals;
}

std::vector<Step> stepsToward(const Goal& goal) {
  std::vector<Step> steps;
  for (const auto& clause : goal.clauses) steps.push_back(stepFor(trimWhitespace(clause)));
  const auto look = rawValue(InteractionType::visualAssert);
  if (steps.empty() || steps.back().type != look) {
    steps.push_back(makeStep(InteractionType::visualAssert,
                             "The screen shows that this is reached: " + goal.name));
  }
  return steps;
}

std::size_t ExplorePlan::stepCount() const {
  std::size_t count = 0;
  for (const auto& test : tests) count += test.steps.size();
  return count;
}

bool needsProject(const AgentExploreRequest& request, const AgentContext& workspace) {
  if (findByName(workspace.projects, request.projectName)) return false;
  const bool hasIdentity = (request.iosProjectPath && request.bundleIdentifier) ||
                           (request.androidProjectPath && request.applicationId);
  if (hasIdentity) return true;
  throw RequestRefused(
      "There is no project named " + inQuotes(request.projectName) +
          ". To create it pass iosProjectPath with bundleIdentifier, or androidProjectPath with "
          "applicationId. " +
          listing("Projects", workspace.projects),
      "missingIdentity");
}

ExplorePlan planExploration(const AgentExploreRequest& request, const AgentContext& workspace) {
  const auto& project = requireProject(workspace, request.projectName);
  ExplorePlan plan;
  plan.platform = platformFor(request.targetPlatform, project);
  plan.app = appFor(plan.platform, project);
  plan.builds = project.buildBeforeScheduledRuns.value_or(false);
  plan.tests = testsToward(request, project);
  if (plan.tests.empty()) throw RequestRefused("The goal is empty: there is nothing to explore.");
  return plan;
}

}  // namespace corvane::standin
