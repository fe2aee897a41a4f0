#include "corvane_mcp/tools/ListInteractionTypesTool.h"

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "corvane_mcp/tools/ToolArguments.h"

namespace corvane {

namespace {

AnyCodable::Array typeNames() {
  AnyCodable::Array names;
  for (const auto& row : Vocabulary<InteractionType>::rows) names.emplace_back(row.rawValue);
  return names;
}

struct Arguments {
  std::optional<std::string> type;

  static auto arguments() {
    return std::tuple(argument("type", &Arguments::type,
                               "Optional. Return the guidance for this interaction type only. Omit "
                               "it for the whole contract.")
                          .with("enum", typeNames()));
  }
};

}  // namespace

std::string_view ListInteractionTypesTool::description() const {
  return "OPTIONAL: Returns prose guidance on Corvane interaction types and parameters. The "
         "machine-readable JSON Schema is already in create_test.inputSchema — agents rarely need "
         "this tool. Use it only for edge-case guidance (e.g. when to pick 'regionOfInterest: "
         "top20' vs 'content', when to enable memoryEnabled, or to understand the "
         "openApplication/terminateApplication bookend convention).";
}

AnyCodable ListInteractionTypesTool::inputSchema() const {
  return schemaOf<Arguments>(OtherProperties::refused);
}

Task<ToolsCallResult> ListInteractionTypesTool::call(ToolCall call) const {
  const auto given = takeArgumentsIfAny<Arguments>(call).type;
  if (!given) co_return ToolsCallResult::success(AuthoringContract::fullMarkdown());
  const auto type = fromRawValue<InteractionType>(*given);
  co_return ToolsCallResult::success(
      std::string(type ? AuthoringContract::guidance(*type) : AuthoringContract::noExtraGuidance));
}

}  // namespace corvane
