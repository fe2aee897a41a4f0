#include "CorvaneCore/authoring/InputSchemaBuilder.h"

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/InteractionDefinition.h"
#include "CorvaneCore/authoring/TestPayloadArguments.h"

namespace corvane {

AnyCodable InputSchemaBuilder::build() {
  JsonObject schema = schemaOf<TestPayloadArguments>(OtherProperties::refused);
  schema.set("$schema", "https://json-schema.org/draft/2020-12/schema");
  return schema;
}

JsonObject InputSchemaBuilder::stepsSchema() {
  // The three bookends alone are three steps.
  constexpr int fewestSteps = 3;
  const JsonObject childSchema = branchChildSchema();
  AnyCodable::Array definitions;
  for (const InteractionType type : interactionTypesByPlace()) {
    if (isConcrete(type)) continue;
    InteractionDefinition definition = definitionOf(type);
    if (takesPartInBranches(type)) definition = std::move(definition).children(childSchema);
    definitions.emplace_back(std::move(definition).schema());
  }
  return {{"type", "array"},
          {"minItems", fewestSteps},
          {"items", JsonObject{{"oneOf", std::move(definitions)}}}};
}

std::vector<IndividualInteractionDescriptor> InputSchemaBuilder::interactionDescriptors() {
  std::vector<IndividualInteractionDescriptor> descriptors;
  descriptors.reserve(vocabularyRows<InteractionType>().size());
  for (const auto& row : Vocabulary<InteractionType>::rows) {
    descriptors.push_back({std::string(row.rawValue),
                           std::string(AuthoringContract::guidance(row.value)),
                           definitionOf(row.value).schema()});
  }
  return descriptors;
}

}  // namespace corvane
