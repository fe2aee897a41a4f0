#include "CorvaneCore/authoring/InputSchemaBuilder.h"

#include <array>

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/TestPayloadArguments.h"
#include "CorvaneCore/authoring/schema/InteractionDefinitions.h"

namespace corvane {

namespace {

/// The step types that a test is composed of, in the order they are offered in, and whether the
/// schema offers them a conditional branch.
struct OfferedType {
  InteractionType type;
  bool mayBranch;
};
constexpr std::array offeredTypes{
    OfferedType{InteractionType::visualAssert, true},
    OfferedType{InteractionType::builtIn, true},
    OfferedType{InteractionType::delay, true},
    OfferedType{InteractionType::waitToLoad, true},
    OfferedType{InteractionType::runTest, true},
    OfferedType{InteractionType::reuseSteps, false},
    OfferedType{InteractionType::userDefined, false},
};

}  // namespace

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
  for (const auto& [type, mayBranch] : offeredTypes) {
    InteractionDefinition definition = definitionOf(type);
    if (mayBranch) definition = std::move(definition).children(childSchema);
    definitions.emplace_back(std::move(definition).schema());
  }
  return {{"type", "array"},
          {"minItems", fewestSteps},
          {"items", JsonObject{{"oneOf", std::move(definitions)}}}};
}

std::vector<IndividualInteractionDescriptor> InputSchemaBuilder::interactionDescriptors() {
  std::vector<IndividualInteractionDescriptor> descriptors;
  for (const auto& row : Vocabulary<InteractionType>::rows) {
    descriptors.push_back({std::string(row.rawValue),
                           std::string(AuthoringContract::guidance(row.value)),
                           definitionOf(row.value).schema()});
  }
  return descriptors;
}

}  // namespace corvane
