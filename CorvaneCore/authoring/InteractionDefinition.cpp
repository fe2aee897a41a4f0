#include "CorvaneCore/authoring/InteractionDefinition.h"

#include <functional>

#include "CorvaneCore/authoring/Vocabularies.h"

namespace corvane {

namespace {

using namespace SchemaParts;

std::string branchText() {
  return "Conditional branch of this step. Children are normal interactions that MUST set "
         "`previousStepCondition`. 'previousFailed' children form the recovery branch: they run "
         "only when this step fails, and the step then soft-fails instead of failing the test, "
         "provided the branch passes. 'previousSucceeded' children run only when this step "
         "succeeds. State router: a visualAssert probe (\"Do you see the tab 'Home'?\") whose "
         "previousFailed child is a runTest of a login test. Interrupt: a recovery branch that "
         "taps 'Allow' on a permission dialog. A conditional step that fails with no "
         "previousFailed children still fails the test. One level only (children cannot have "
         "children); child types: " +
         joinedRawValues<InteractionType>("/", takesPartInBranches) + " (compose " +
         joinedRawValues<InteractionType>("/", std::not_fn(takesPartInBranches)) +
         " at the top level).";
}

/// An object of these keys only.
JsonObject closedObject(JsonObject properties, std::initializer_list<const char*> required) {
  JsonObject schema{{"type", "object"}, {"additionalProperties", false}};
  schema.set("properties", std::move(properties));
  if (required.size() > 0) {
    schema.set("required", AnyCodable::Array(required.begin(), required.end()));
  }
  return schema;
}

}  // namespace

InteractionDefinition::InteractionDefinition(InteractionType type, std::string_view descriptionText,
                                             Description description) {
  properties.set("type", JsonObject{{"const", rawValue(type)}});
  properties.set("description", ofType("string", descriptionText));
  properties.set("previousStepCondition",
                 wordOf<PreviousStepCondition>(
                     "ONLY meaningful on a step nested inside another step's `children`, where it "
                     "selects branch membership. Leave it out of top-level steps."));
  properties.set("parameters", closedObject({}, {}));
  if (description == Description::required) required.emplace_back("description");
}

InteractionDefinition InteractionDefinition::property(std::string_view key, JsonObject schema) && {
  properties.set(key, std::move(schema));
  return std::move(*this);
}

InteractionDefinition InteractionDefinition::parameters(
    JsonObject parameterProperties, std::initializer_list<const char*> requiredParameters) && {
  return std::move(*this).property(
      "parameters", closedObject(std::move(parameterProperties), requiredParameters));
}

InteractionDefinition InteractionDefinition::commonFlags() && {
  return std::move(*this)
      .property("aiSegmentationMode",
                with(wordOf<AISegmentationMode>(
                         "How Corvane finds elements on the screen. 'none' is pure on-device "
                         "contour detection, the fastest; 'auto' enables AI segmentation; "
                         "'forceFresh' enables it without reusing an earlier segmentation."),
                     "default", rawValue(AISegmentationMode::none)))
      .property("memoryEnabled",
                with(ofType("boolean",
                            "When true, Corvane records the step's resolved position on the first "
                            "run and re-validates it on later runs."),
                     "default", true));
}

InteractionDefinition InteractionDefinition::children(JsonObject childSchema) && {
  JsonObject branch = ofType("array", branchText());
  branch.set("minItems", 1);
  branch.set("items", std::move(childSchema));
  return std::move(*this).property("children", std::move(branch));
}

JsonObject InteractionDefinition::schema() && {
  JsonObject schema{{"type", "object"}};
  schema.set("required", std::move(required));
  schema.set("properties", std::move(properties));
  return schema;
}

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

}  // namespace

InteractionDefinition definitionOf(InteractionType type) {
  return vocabularyRow(type).definition();
}

JsonObject branchChildSchema() {
  JsonObject properties;
  JsonObject parameters;
  for (const auto& row : Vocabulary<InteractionType>::rows) {
    if (!takesPartInBranches(row.value)) continue;
    const JsonObject definition = definitionOf(row.value).schema();
    addProperties(definition, properties);
    const auto* own = definition.findAs<JsonObject>("properties")->findAs<JsonObject>("parameters");
    if (own) addProperties(*own, parameters);
  }
  properties.set("type", wordOf<InteractionType>("The type of the child.", takesPartInBranches));
  properties.set("description",
                 ofType("string",
                        "What the child works with. tap, visualAssert: a phrase that quotes the "
                        "visible UI text, e.g. \"Button labeled 'Allow'\". input: the literal text "
                        "to type. builtIn: as at the top level. Other types: an optional label."));
  properties.set("previousStepCondition",
                 wordOf<PreviousStepCondition>("When the child runs: 'previousFailed' when the "
                                               "parent step fails, 'previousSucceeded' when it "
                                               "succeeds."));
  parameters.set("command", wordOf<BuiltInCommand>("What a builtIn child does.", mayRunMidTest));
  properties.set("parameters", JsonObject{{"type", "object"},
                                          {"description", "Only the keys of the child's type."},
                                          {"properties", std::move(parameters)},
                                          {"additionalProperties", false}});
  return {{"type", "object"},
          {"required", AnyCodable::Array{"type", "previousStepCondition"}},
          {"properties", std::move(properties)}};
}

}  // namespace corvane
