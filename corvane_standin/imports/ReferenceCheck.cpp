#include "corvane_standin/imports/ReferenceCheck.h"

#include <optional>
#include <string>
#include <utility>

#include "corvane_standin/workspace/Lookup.h"

namespace corvane::standin {

namespace {

using Issues = std::vector<ValidationIssue>;
using Test = AgentContext::TestContext;
using Udi = AgentContext::UdiContext;

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
    const auto type = interaction.knownType();
    if (type == InteractionType::userDefined && interaction.udiName &&
        !findByName(library, *interaction.udiName)) {
      add(place + ".udiName",
          "The library has no building block named " + inQuotes(*interaction.udiName) + ". " +
              listing("Building blocks", library),
          library);
    }
    if (type != InteractionType::runTest && type != InteractionType::reuseSteps) return;
    const auto* test = referencedTest(interaction, place);
    if (test && type == InteractionType::reuseSteps) checkRange(interaction, *test, place);
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

}  // namespace

Issues brokenReferences(const AgentTestSchema& payload, const AgentContext& workspace) {
  const auto* project = findByName(workspace.projects, payload.projectName);
  ReferenceChecker checker(project ? project->tests : std::vector<Test>(),
                           workspace.userDefinedInteractions.value_or(std::vector<Udi>()));
  for (std::size_t i = 0; i < payload.tests.size(); ++i) {
    checker.check(payload.tests[i], "tests[" + std::to_string(i) + "]");
  }
  return std::move(checker).issues();
}

}  // namespace corvane::standin
