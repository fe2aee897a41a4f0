#include "CorvaneCore/authoring/rules/BookendRules.h"

#include "CorvaneCore/authoring/AuthoringTerms.h"

namespace corvane {

namespace {

using Code = ValidationIssue::Code;
using AuthoringTerms::appNamePlaceholder;

AnyCodable bookend(BuiltInCommand command, std::string_view description) {
  return JsonObject{{"type", rawValue(InteractionType::builtIn)},
                    {"description", description},
                    {"parameters", JsonObject{{"command", rawValue(command)}}}};
}

AnyCodable terminateStep() {
  return bookend(BuiltInCommand::terminateApplication, "");
}

AnyCodable openStep() {
  return bookend(BuiltInCommand::openApplication, appNamePlaceholder);
}

std::string place(const std::string& path, std::size_t position) {
  return path + "[" + std::to_string(position) + "]";
}

void checkSecond(const AgentTest& test, const std::string& path, ValidationResult& result) {
  const AgentInteraction& second = test.interactions[1];
  if (!second.isCommand(BuiltInCommand::openApplication)) {
    result.addError(Code::missingSecondInteraction, place(path, 1),
                    "Test '" + test.name +
                        "' second interaction must be builtIn/openApplication with description "
                        "'{{APP_NAME}}'.",
                    openStep());
  } else if (second.description != appNamePlaceholder) {
    result.addError(Code::wrongAppNamePlaceholder, place(path, 1) + ".description",
                    "openApplication description must be the literal string '{{APP_NAME}}'. "
                    "Corvane replaces this placeholder after building the app and resolving its "
                    "bundle/display name.",
                    appNamePlaceholder);
  }
}

}  // namespace

void checkBookends(const AgentTest& test, const std::string& path, ValidationResult& result) {
  const auto& steps = test.interactions;
  if (!steps.front().isCommand(BuiltInCommand::terminateApplication)) {
    result.addError(Code::missingFirstInteraction, place(path, 0),
                    "Test '" + test.name +
                        "' must start with a builtIn/terminateApplication interaction (clean-slate "
                        "guarantee).",
                    terminateStep());
  }
  // The only step of a test is its first and its last: one terminate step is a sound test.
  if (steps.size() >= 2) checkSecond(test, path, result);
  if (!steps.back().isCommand(BuiltInCommand::terminateApplication)) {
    result.addError(Code::missingLastInteraction, place(path, steps.size() - 1),
                    "Test '" + test.name +
                        "' must end with a builtIn/terminateApplication interaction so the "
                        "simulator is left clean.",
                    terminateStep());
  }
}

}  // namespace corvane
