#include "corvane_standin/imports/ImportJob.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "CorvaneCore/authoring/TestValidator.h"
#include "corvane_standin/steps/Steps.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

namespace {

using Issues = std::vector<ValidationIssue>;
using Project = AgentContext::ProjectContext;
using Reference = StepType::Reference;
using Step = AgentContext::StepSummary;
using Steps = std::vector<Step>;
using Test = AgentContext::TestContext;
using Udi = AgentContext::UdiContext;

constexpr std::string_view source = "create_test";

Reference referenceOf(const AgentInteraction& interaction) {
  const auto type = interaction.knownType();
  return type ? stepType(*type).reference : Reference::none;
}

/// Looks at the references of one payload.
class ReferenceChecker {
 public:
  ReferenceChecker(std::vector<Test> tests, std::vector<Udi> library)
      : tests(std::move(tests)), library(std::move(library)) {}

  void check(const AgentTest& test, const std::string& path) {
    for (std::size_t i = 0; i < test.interactions.size(); ++i) {
      const auto& interaction = test.interactions[i];
      const auto place = path + ".interactions[" + std::to_string(i) + "]";
      check(interaction, place);
      if (!interaction.children) continue;
      for (std::size_t k = 0; k < interaction.children->size(); ++k) {
        check((*interaction.children)[k], place + ".children[" + std::to_string(k) + "]");
      }
    }
    // A later test of the payload may run this one; its steps are not numbered before it is filed.
    if (!findByName(tests, test.name)) tests.emplace_back().name = test.name;
  }

  [[nodiscard]] Issues issues() && { return std::move(found); }

 private:
  void check(const AgentInteraction& interaction, const std::string& place) {
    const auto reference = referenceOf(interaction);
    if (reference == Reference::buildingBlock && interaction.udiName &&
        !findByName(library, *interaction.udiName)) {
      add(place + ".udiName",
          "The library has no building block named " + inQuotes(*interaction.udiName) + ". " +
              listing("Building blocks", library),
          library);
    }
    if (reference != Reference::test && reference != Reference::stepsOfTest) return;
    const auto* test = referencedTest(interaction, place);
    if (test && reference == Reference::stepsOfTest) checkRange(interaction, *test, place);
  }

  /// The id wins when both are set.
  const Test* referencedTest(const AgentInteraction& interaction, const std::string& place) {
    const bool byId = interaction.referencedTestId && !interaction.referencedTestId->empty();
    const auto& wanted =
        byId ? *interaction.referencedTestId : interaction.referencedTestName.value_or("");
    const auto* test = byId ? findById(tests, wanted) : findByName(tests, wanted);
    if (!test) {
      add(place + (byId ? ".referencedTestId" : ".referencedTestName"),
          "The project has no test " + std::string(byId ? "with the id " : "named ") +
              inQuotes(wanted) + ". " + listing("Tests", tests),
          byId ? std::vector<Test>() : tests);
    }
    return test;
  }

  void checkRange(const AgentInteraction& interaction, const Test& test, const std::string& place) {
    const auto count = static_cast<std::int64_t>(test.steps.size());
    const auto fromStep = interaction.fromStep.value_or(0);
    const auto toStep = interaction.toStep.value_or(fromStep);
    if (toStep < count) return;
    add(place + (interaction.toStep ? ".toStep" : ".fromStep"),
        inQuotes(test.name) + " has " + std::to_string(count) + " steps, so there is no step " +
            std::to_string(toStep) + ".",
        std::vector<Test>());
  }

  /// The first of `choices` is suggested.
  template <class Named>
  void add(std::string path, std::string message, const std::vector<Named>& choices) {
    ValidationIssue issue;
    issue.code = ValidationIssue::Code::invalidEnumValue;
    issue.path = std::move(path);
    issue.message = std::move(message);
    if (!choices.empty()) issue.suggestion = AnyCodable(choices.front().name);
    found.push_back(std::move(issue));
  }

  std::vector<Test> tests;
  std::vector<Udi> library;
  Issues found;
};

const Test* referencedTest(const AgentInteraction& interaction, const Project& project) {
  if (interaction.referencedTestId && !interaction.referencedTestId->empty()) {
    return findById(project.tests, *interaction.referencedTestId);
  }
  return findByName(project.tests, interaction.referencedTestName.value_or(""));
}

/// What the app shows for a step.
std::string stepText(const AgentInteraction& interaction, const Project& project) {
  const auto type = interaction.knownType();
  if (!type) return interaction.description;
  const auto* test = referencedTest(interaction, project);
  return stepType(*type).reading(interaction,
                                 test ? test->name : interaction.referencedTestName.value_or(""));
}

Step summaryOf(const AgentInteraction& interaction, const Project& project) {
  Step step;
  step.type = interaction.type;
  step.description = stepText(interaction, project);
  step.previousStepCondition = interaction.previousStepCondition;
  if (interaction.hasChildren()) {
    step.children.emplace();
    for (const auto& child : *interaction.children) {
      step.children->push_back(summaryOf(child, project));
    }
  }
  return step;
}

/// A reuseSteps step gives way to copies of the steps that it names.
void appendSteps(const AgentInteraction& interaction, const Project& project, Steps& steps) {
  const auto* source = referenceOf(interaction) == Reference::stepsOfTest
                           ? referencedTest(interaction, project)
                           : nullptr;
  if (!source) return steps.push_back(summaryOf(interaction, project));
  const auto fromStep = interaction.fromStep.value_or(0);
  const auto toStep = interaction.toStep.value_or(fromStep);
  const Steps copies(source->steps.begin() + fromStep, source->steps.begin() + toStep + 1);
  steps.insert(steps.end(), copies.begin(), copies.end());
}

/// The steps without the app's start and end, which are injected again when the test runs.
Steps functionalSteps(const AgentTest& test, const Project& project) {
  Steps steps;
  constexpr std::size_t opening = 2;
  for (std::size_t i = opening; i + 1 < test.interactions.size(); ++i) {
    appendSteps(test.interactions[i], project, steps);
  }
  return steps;
}

/// What the authoring rules cannot see in a payload alone: references to tests, step ranges and
/// building blocks that the workspace does not have. Every issue is an error. A test may refer to
/// the tests before it in the payload.
Issues brokenReferences(const AgentTestSchema& payload, const AgentContext& workspace) {
  const auto* project = findByName(workspace.projects, payload.projectName);
  ReferenceChecker checker(project ? project->tests : std::vector<Test>(),
                           workspace.userDefinedInteractions.value_or(std::vector<Udi>()));
  for (std::size_t i = 0; i < payload.tests.size(); ++i) {
    checker.check(payload.tests[i], "tests[" + std::to_string(i) + "]");
  }
  return std::move(checker).issues();
}

/// Files the tests of a payload that has passed every check: into their project, which is created
/// if it does not exist, and their suite. A test whose name the project has already is updated in
/// place. Returns the names of the tests in payload order.
std::vector<std::string> importTests(const AgentTestSchema& payload, AgentContext& workspace,
                                     const Ids& ids) {
  auto* project = findByName(workspace.projects, payload.projectName);
  if (!project) project = &addProject(workspace, ProjectIdentity::of(payload));
  std::vector<std::string> names;
  for (const auto& imported : payload.tests) {
    Test test;
    test.name = imported.name;
    test.description = imported.description;
    test.steps = functionalSteps(imported, *project);
    test.parameterNames = parametersOf(test.steps);
    test.autoScaffold = true;
    names.push_back(fileTest(*project, std::move(test), payload.suiteName, ids).name);
  }
  return names;
}

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
      [&](AgentContext& workspace) { names = importTests(payload, workspace, services.ids); });
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
  if (!tornResult()) tearResult(run->tornResult());
}

}  // namespace corvane::standin
