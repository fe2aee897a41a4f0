#include "CorvaneCore/authoring/rules/BuiltInRules.h"

#include "CorvaneCore/authoring/AuthoringTerms.h"
#include "CorvaneCore/json/JsonNumber.h"
#include "CorvaneCore/text/Utf8.h"

namespace corvane {

namespace {

using Code = ValidationIssue::Code;

constexpr std::string_view commandPlace = ".parameters.command";

void checkOpenApplication(const CheckedStep& step) {
  if (step.interaction.description == AuthoringTerms::appNamePlaceholder) return;
  step.error(Code::wrongAppNamePlaceholder, ".description",
             "openApplication.description must be exactly '{{APP_NAME}}'. Corvane substitutes the "
             "real bundle name after building.",
             AuthoringTerms::appNamePlaceholder);
}

void checkOpenUrl(const CheckedStep& step) {
  if (!trimWhitespace(step.interaction.description).empty()) return;
  step.error(Code::missingRequiredField, ".description",
             std::string("openUrl.description must be a URL (e.g. \"") +
                 AuthoringTerms::exampleUrl + "\") or a `$paramName` placeholder.",
             AuthoringTerms::exampleUrl);
}

void checkBackspaceCount(const CheckedStep& step) {
  const std::string& description = step.interaction.description;
  if (parseInteger(trimWhitespace(description)).value_or(0) > 0) return;
  step.error(Code::invalidBackspaceCount, ".description",
             "hitBackspaceKey.description must be a positive integer count, e.g. \"5\". Got: \"" +
                 description + "\"");
}

void checkGoBack(const CheckedStep& step) {
  if (step.platform == AgentTargetPlatform::android) return;
  step.error(Code::androidOnlyCommand, commandPlace,
             "goBack is Android-only. On iOS, use a tap/scroll back gesture or rely on "
             "tap-on-back-button.");
}

}  // namespace

void checkBuiltIn(const CheckedStep& step) {
  const auto* raw = step.interaction.parameter<std::string>("command");
  if (!raw) {
    step.error(Code::missingRequiredField, commandPlace,
               "builtIn interactions require parameters.command. Valid: " +
                   joinedRawValues<BuiltInCommand>(", "));
    return;
  }
  const auto command = fromRawValue<BuiltInCommand>(*raw);
  if (!command) {
    step.error(
        Code::invalidEnumValue, commandPlace,
        "Unknown builtIn command '" + *raw + "'. Valid: " + joinedRawValues<BuiltInCommand>(", "));
    return;
  }
  switch (*command) {
    case BuiltInCommand::none:
      return step.error(Code::invalidEnumValue, commandPlace,
                        "builtIn command 'none' is not a valid command.");
    case BuiltInCommand::openApplication:
      return checkOpenApplication(step);
    case BuiltInCommand::openUrl:
      return checkOpenUrl(step);
    case BuiltInCommand::hitBackspaceKey:
      return checkBackspaceCount(step);
    case BuiltInCommand::goBack:
      return checkGoBack(step);
    case BuiltInCommand::terminateApplication:
    case BuiltInCommand::goHome:
    case BuiltInCommand::hitReturnKey:
    case BuiltInCommand::clearText:
    case BuiltInCommand::tapToDismiss:
      return;
  }
}

}  // namespace corvane
