#include "corvane_standin/imports/TestImport.h"

#include <utility>

#include "corvane_standin/workspace/Changes.h"
#include "corvane_standin/workspace/Lookup.h"

namespace corvane::standin {

namespace {

using Project = AgentContext::ProjectContext;
using Step = AgentContext::StepSummary;
using Steps = std::vector<Step>;
using Test = AgentContext::TestContext;

const Test* referencedTest(const AgentInteraction& interaction, const Project& project) {
  if (interaction.referencedTestId && !interaction.referencedTestId->empty()) {
    return findById(project.tests, *interaction.referencedTestId);
  }
  return findByName(project.tests, interaction.referencedTestName.value_or(""));
}

std::string commandText(const AgentInteraction& interaction) {
  const auto command = interaction.command();
  std::string text(command ? title(*command) : "Built In");
  if (!interaction.description.empty()) text += " " + interaction.description;
  return text;
}

std::string secondsText(const AgentInteraction& interaction) {
  const auto* seconds = interaction.parameters ? interaction.parameters->find("seconds") : nullptr;
  return "Wait " + (seconds ? AgentWire::encode(*seconds) : "1") + " seconds";
}

/// What the app shows for a step; the author's own description where there is one.
std::string stepText(const AgentInteraction& interaction, const Project& project) {
  const auto type = interaction.knownType();
  if (type == InteractionType::builtIn) return commandText(interaction);
  if (!interaction.description.empty()) return interaction.description;
  if (type == InteractionType::userDefined) return interaction.udiName.value_or("");
  if (type == InteractionType::delay) return secondsText(interaction);
  if (type == InteractionType::runTest) {
    const auto* test = referencedTest(interaction, project);
    return "Run the test \"" + (test ? test->name : interaction.referencedTestName.value_or("")) +
           "\"";
  }
  return {};
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
  const auto* source = interaction.knownType() == InteractionType::reuseSteps
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

}  // namespace

std::vector<std::string> importTests(const AgentTestSchema& payload, AgentContext& workspace) {
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
    names.push_back(fileTest(*project, std::move(test), payload.suiteName).name);
  }
  return names;
}

}  // namespace corvane::standin
