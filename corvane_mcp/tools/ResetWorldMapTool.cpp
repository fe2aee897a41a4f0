#include "corvane_mcp/tools/ResetWorldMapTool.h"

#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/tools/Dispatch.h"
#include "corvane_mcp/tools/LibraryDispatch.h"
#include "corvane_mcp/tools/ToolArguments.h"

namespace corvane {

namespace {

struct Arguments {
  std::optional<std::string> projectName;

  static auto arguments() {
    return std::tuple(argument("projectName", &Arguments::projectName,
                               "Exact name of the Corvane project whose world map is reset (see "
                               "describe_project).")
                          .required());
  }
};

}  // namespace

std::string_view ResetWorldMapTool::description() const {
  return R"(Reset the WORLD MAP for a project's app — the charted screens, actions, and navigation edges describe_project shows under `worldMap`.

Use it when the UI changed enough that the old chart misleads, or to baseline a fresh exploration. Only exploration sessions (explore_flow) rebuild the map; deterministic runs never chart. Tests, UDIs, and learned step positions are NOT touched; this erases exploration knowledge only.

Returns a requestId; poll get_result until terminal "deleted".)";
}

AnyCodable ResetWorldMapTool::inputSchema() const {
  return schemaOf<Arguments>(OtherProperties::refused);
}

Task<ToolsCallResult> ResetWorldMapTool::call(ToolCall call) const {
  const auto given = takeArgumentsIfAny<Arguments>(call).projectName.value_or("");
  const auto projectName = trimWhitespace(given);
  if (projectName.empty()) co_return invalidArguments("reset_world_map requires projectName.");

  auto request = Dispatch::newRequest<AgentLibraryRequest>(services);
  request.action = AgentLibraryRequest::Action::resetWorldMap;
  request.projectName = projectName;
  co_return dispatchLibraryRequest(
      request,
      {"World-map reset", "\n  Project:    " + request.projectName,
       " — terminal \"deleted\" confirms the reset. The map rebuilds from the next exploration "
       "session."},
      services);
}

}  // namespace corvane
