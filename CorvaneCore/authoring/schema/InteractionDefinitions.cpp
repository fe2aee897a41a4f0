#include "CorvaneCore/authoring/schema/InteractionDefinitions.h"

#include <stdexcept>

#include "CorvaneCore/authoring/schema/CompositionDefinitions.h"
#include "CorvaneCore/authoring/schema/ConcreteDefinitions.h"
#include "CorvaneCore/authoring/schema/SchemaParts.h"
#include "CorvaneCore/authoring/vocabulary/BuiltInCommand.h"
#include "CorvaneCore/authoring/vocabulary/PreviousStepCondition.h"

namespace corvane {

namespace {

using namespace SchemaParts;

JsonObject withoutDescription(const JsonObject& schema) {
  JsonObject undescribed;
  for (const auto& [keyword, value] : schema) {
    if (keyword != "description") undescribed.set(keyword, value);
  }
  return undescribed;
}

/// Adds the properties that `all` lacks. Their descriptions are for the type they come from and
/// stay behind.
void addProperties(const JsonObject& schema, JsonObject& all) {
  for (const auto& [key, property] : *schema.findAs<JsonObject>("properties")) {
    if (!all.find(key)) all.set(key, withoutDescription(*property.object()));
  }
}

/// A branch runs in the middle of a test, where the app must be neither ended nor started.
bool mayRunInBranch(BuiltInCommand command) {
  return command != BuiltInCommand::none && !isLifecycle(command);
}

}  // namespace

InteractionDefinition definitionOf(InteractionType type) {
  switch (type) {
    case InteractionType::tap:
      return tapDefinition();
    case InteractionType::input:
      return inputDefinition();
    case InteractionType::visualAssert:
      return visualAssertDefinition();
    case InteractionType::scroll:
      return scrollDefinition();
    case InteractionType::builtIn:
      return builtInDefinition();
    case InteractionType::delay:
      return delayDefinition();
    case InteractionType::waitToLoad:
      return waitToLoadDefinition();
    case InteractionType::drag:
      return dragDefinition();
    case InteractionType::runTest:
      return runTestDefinition();
    case InteractionType::userDefined:
      return userDefinedDefinition();
    case InteractionType::reuseSteps:
      return reuseStepsDefinition();
  }
  throw std::logic_error("an interaction type has no definition");
}

JsonObject branchChildSchema() {
  JsonObject properties;
  JsonObject parameters;
  for (const auto& row : Vocabulary<InteractionType>::rows) {
    if (!mayBeBranchChild(row.value)) continue;
    const JsonObject definition = definitionOf(row.value).schema();
    addProperties(definition, properties);
    const auto* own = definition.findAs<JsonObject>("properties")->findAs<JsonObject>("parameters");
    if (own) addProperties(*own, parameters);
  }
  properties.set("type", wordOf<InteractionType>("The type of the child.", mayBeBranchChild));
  properties.set("description",
                 ofType("string",
                        "What the child works with. tap, visualAssert: a phrase that quotes the "
                        "visible UI text, e.g. \"Button labeled 'Allow'\". input: the literal text "
                        "to type. builtIn: as at the top level. Other types: an optional label."));
  properties.set("previousStepCondition",
                 wordOf<PreviousStepCondition>("When the child runs: 'previousFailed' when the "
                                               "parent step fails, 'previousSucceeded' when it "
                                               "succeeds."));
  parameters.set("command", wordOf<BuiltInCommand>("What a builtIn child does.", mayRunInBranch));
  properties.set("parameters", JsonObject{{"type", "object"},
                                          {"description", "Only the keys of the child's type."},
                                          {"properties", std::move(parameters)},
                                          {"additionalProperties", false}});
  return {{"type", "object"},
          {"required", AnyCodable::Array{"type", "previousStepCondition"}},
          {"properties", std::move(properties)}};
}

}  // namespace corvane
