#include "bench/speed/Documents.h"

#include <array>
#include <cstdio>

#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"

namespace corvane::testing {

namespace {

/// A UUID that tells what it numbers.
std::string numberedId(std::size_t group, std::size_t number) {
  std::array<char, 40> text;
  std::snprintf(text.data(), text.size(), "%08zx-0000-4000-8000-%012zx", group, number);
  return text.data();
}

std::string numbered(const char* name, std::size_t number) {
  return std::string(name) + " " + std::to_string(number);
}

AgentContext::TestContext contextTest(std::size_t project, std::size_t number) {
  constexpr std::size_t stepCount = 20;
  AgentContext::TestContext test;
  test.id = numberedId(project, number);
  test.name = numbered("Test", number);
  test.verified = number % 3 != 0;
  for (std::size_t i = 0; i < stepCount; ++i) {
    test.steps.push_back({.type = "tap",
                          .description = numbered("Tap 'Row", i) + "'",
                          .previousStepCondition = {},
                          .children = {}});
  }
  return test;
}

AgentContext::ProjectContext contextProject(std::size_t number) {
  constexpr std::size_t testCount = 500;
  AgentContext::ProjectContext project;
  project.name = numbered("Project", number);
  project.platform = number % 2 == 0 ? "ios" : "android";
  project.bundleIdentifier = "com.example.project" + std::to_string(number);
  for (std::size_t i = 0; i < testCount; ++i) project.tests.push_back(contextTest(number, i));
  return project;
}

AgentRunResult::Test resultTest(std::size_t number) {
  constexpr std::size_t stepCount = 40;
  AgentRunResult::Test test;
  test.testId = numberedId(1, number);
  test.testName = numbered("Test", number);
  test.status = "passed";
  test.durationSeconds = 31.25;
  for (std::size_t i = 0; i < stepCount; ++i) {
    AgentRunResult::Step step;
    step.index = static_cast<std::int64_t>(i);
    step.title = "Tap";
    step.description = numbered("Row labeled 'Item", i) + "'";
    step.status = "passed";
    step.durationSeconds = 0.25 + static_cast<double>(i % 7);
    test.steps.push_back(std::move(step));
  }
  return test;
}

AgentRunResult resultOf(std::string_view requestId, RunStatus status) {
  AgentRunResult result;
  result.requestId = requestId;
  result.source = "run_test";
  result.setStatus(status);
  result.updatedAt = currentDate();
  result.projectName = std::string(Documents::projectName);
  return result;
}

JsonObject bookend(const char* command, const char* description) {
  return {{"type", "builtIn"},
          {"description", description},
          {"parameters", JsonObject{{"command", command}}}};
}

JsonObject recovery(std::size_t number) {
  return {{"type", "tap"},
          {"description", numbered("Button labeled 'Allow", number) + "'"},
          {"parameters", JsonObject{{"tapCount", 1}, {"regionOfInterest", "content"}}},
          {"previousStepCondition", "previousFailed"}};
}

/// One step of each kind that a test is composed of, over and over.
JsonObject composedStep(std::size_t number) {
  switch (number % 8) {
    case 0:
      return {{"type", "visualAssert"},
              {"description", numbered("Do you see text `Order", number) + "`?"}};
    case 1:
      return {{"type", "runTest"},
              {"referencedTestName", numbered("Test", number)},
              {"arguments", JsonObject{{"user", numbered("user", number)}}}};
    case 2:
      return {{"type", "reuseSteps"},
              {"referencedTestName", numbered("Test", number)},
              {"fromStep", 1},
              {"toStep", 3}};
    case 3:
      return {{"type", "userDefined"}, {"udiName", numbered("Block", number)}};
    case 4:
      return {{"type", "delay"}, {"parameters", JsonObject{{"seconds", 1.5}}}};
    case 5:
      return {{"type", "waitToLoad"}, {"parameters", JsonObject{{"totalSeconds", 30}}}};
    case 6:
      return bookend("goHome", "");
    default:
      return {{"type", "visualAssert"},
              {"description", numbered("Is the tab 'Home", number) + "' selected?"},
              {"children", AnyCodable::Array{recovery(number)}}};
  }
}

}  // namespace

void Documents::writeContext(const AgentPaths& in) {
  constexpr std::size_t projectCount = 53;
  AgentContext context;
  context.updatedAt = currentDate();
  context.appVersion = "4.2";
  context.currentProjectName = std::string(projectName);
  for (std::size_t i = 0; i < projectCount; ++i) context.projects.push_back(contextProject(i));
  context.write(in);
}

void Documents::writeTerminalResult(std::string_view requestId, const AgentPaths& in) {
  constexpr std::size_t testCount = 4000;
  AgentRunResult result = resultOf(requestId, RunStatus::passed);
  auto& tests = result.tests.emplace();
  for (std::size_t i = 0; i < testCount; ++i) tests.push_back(resultTest(i));
  result.summary = {.tests = testCount, .testsPassed = testCount, .durationSeconds = 125000};
  result.write(in);
}

void Documents::writeRunningResult(std::string_view requestId, const AgentPaths& in) {
  AgentRunResult result = resultOf(requestId, RunStatus::running);
  result.progress = {.currentStep = 3, .totalSteps = 12, .lastStepStatus = {}, .lastStepTitle = {}};
  result.write(in);
}

std::string Documents::createTestArguments() {
  constexpr std::size_t interactionCount = 2000;
  AnyCodable::Array interactions{bookend("terminateApplication", ""),
                                 bookend("openApplication", "{{APP_NAME}}")};
  while (interactions.size() < interactionCount - 1) {
    interactions.emplace_back(composedStep(interactions.size()));
  }
  interactions.emplace_back(bookend("terminateApplication", ""));
  return toJson(JsonObject{{"projectName", "Shop"},
                           {"testName", "A long way"},
                           {"iosProjectPath", "/src/shop"},
                           {"bundleIdentifier", "com.example.shop"},
                           {"interactions", std::move(interactions)}});
}

}  // namespace corvane::testing
