#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/tools/ToolArguments.h"
#include "corvane_mcp/tools/Tools.h"

namespace corvane {

namespace {

/// How the answer to a dispatched library request reads.
struct LibraryAnswer {
  /// What was dispatched, e.g. "Deletion".
  std::string_view what;
  /// Lines after the one with the request id.
  std::string details;
  /// What follows the ready-made get_result call.
  std::string outcome;
};

/// How the log tells the actions apart; extractions came first and are not named.
std::string describe(AgentLibraryRequest::Action action) {
  if (action == AgentLibraryRequest::Action::extractUdi) return {};
  return std::string(" (").append(rawValue(action)) + ")";
}

/// Writes a library request, makes sure that the app runs when it can be found, and words the
/// answer. Throws JSONRPCError when the request cannot be written.
ToolsCallResult dispatch(const AgentLibraryRequest& request, const LibraryAnswer& answer,
                         const ToolServices& services) {
  Dispatch::writeRequest(request, "library request", services, describe(request.action));
  Dispatch::launchAppIfFound(services);
  std::string text = std::string(answer.what).append(" dispatched to Corvane.\n");
  text += "\n  " + AnswerTexts::requestIdLine(request.requestId, 12);
  text += answer.details;
  text.append(AnswerTexts::beforeNextCall) +=
      Dispatch::getResultCall(request.requestId, 60) + answer.outcome;
  return ToolsCallResult::success(std::move(text));
}

namespace extract_udi {

constexpr std::string_view name = "extract_udi";

constexpr std::string_view description =
    R"(Extract a contiguous range of steps from an EXISTING test into a named, reusable building block (a user-defined interaction, "UDI"). Embed it through create_test's userDefined reference; the steps keep their learned on-screen positions.

UDI or runTest? A UDI is a low-level, self-contained ingredient: it performs ONE generic sub-task and verifies nothing on its own. A standalone flow that runs and verifies something is reused with runTest instead. Rule of thumb: a MEANS (operate a control, enter a value, get past a prompt) → UDI; an end-to-end flow that asserts a feature works → runTest.

Call describe_project first: it lists each test's steps with their 0-based indexes, and the existing catalog under userDefinedInteractions — check it for duplicates before you extract another. Steps containing '$param' placeholders become UDI parameters automatically.

Returns a requestId; poll get_result until terminal "extracted", which carries the udi {name, stepCount, parameterNames}.

Refreshing a stale UDI: overwrite:true replaces the UDI of the same name in place. The template id is preserved; future embeds use the new steps, while tests that already embed it keep their copy until they are re-created. delete_udi retires a UDI for good.)";

struct Arguments {
  std::optional<std::string> projectName;
  std::optional<std::string> testName;
  std::optional<std::int64_t> fromStep;
  std::optional<std::int64_t> toStep;
  std::optional<std::string> udiName;
  std::optional<bool> overwrite;

  static auto arguments() {
    using A = Arguments;
    return std::tuple(
        argument("projectName", &A::projectName,
                 "Exact Corvane project name containing the source test.")
            .required(),
        argument("testName", &A::testName, "Exact name of the source test (see describe_project).")
            .required(),
        argument("fromStep", &A::fromStep,
                 "0-based index of the FIRST step to extract, matching describe_project's step "
                 "order.")
            .required()
            .with("minimum", 0),
        argument("toStep", &A::toStep, "0-based index of the LAST step to extract (inclusive).")
            .required()
            .with("minimum", 0),
        argument("udiName", &A::udiName,
                 "Name for the building block — a short noun phrase for the sub-task it performs, "
                 "e.g. \"Fill shipping address\" or \"Dismiss consent prompt\". Collides with an "
                 "existing UDI unless overwrite is true.")
            .required(),
        argument("overwrite", &A::overwrite,
                 "Replace an existing UDI of this name IN PLACE (template id preserved). Use to "
                 "refresh a stale UDI after the app's flow changed. Existing tests keep their "
                 "embedded copy — re-upsert them to pick up the new steps."));
  }
};

ToolsCallResult call(const Arguments& arguments, const ToolServices& services) {
  const std::string projectName = arguments.projectName.value_or("");
  const std::string testName = arguments.testName.value_or("");
  const std::string udiName(trimWhitespace(arguments.udiName.value_or("")));
  if (projectName.empty() || testName.empty() || udiName.empty() || !arguments.fromStep ||
      !arguments.toStep) {
    return invalidArguments(
        "extract_udi requires projectName, testName, fromStep, toStep, and udiName.");
  }
  if (*arguments.fromStep < 0 || *arguments.toStep < *arguments.fromStep) {
    return invalidArguments(
        "Step range must satisfy 0 <= fromStep <= toStep (0-based, inclusive — see "
        "describe_project for the source test's steps).");
  }

  auto request = Dispatch::newRequest<AgentLibraryRequest>(services);
  request.action = AgentLibraryRequest::Action::extractUdi;
  request.projectName = projectName;
  request.testName = testName;
  request.fromStep = *arguments.fromStep;
  request.toStep = *arguments.toStep;
  request.udiName = udiName;
  request.overwrite = arguments.overwrite;
  return dispatch(
      request,
      {"Extraction",
       "\n  Source:     '" + testName + "' steps " + std::to_string(request.fromStep) + "-" +
           std::to_string(request.toStep) + " in '" + projectName + "'\n  UDI name:   " + udiName,
       " — terminal \"extracted\" carries the udi payload; then embed it via create_test "
       "{\"type\":\"userDefined\",\"udiName\":\"" +
           udiName + "\"}."},
      services);
}

}  // namespace extract_udi

namespace delete_udi {

constexpr std::string_view name = "delete_udi";

constexpr std::string_view description =
    R"(Delete a user-defined interaction (UDI) from the user's library by name.

Use it to retire stale building blocks: a flow the app no longer has, or a UDI of an abandoned project (sourceProjectName in describe_project tells which project it came from). Tests that already embed the UDI keep their copy and keep running — deletion only removes the template, so that future create_test calls can no longer reference it. To REFRESH a UDI instead, call extract_udi with overwrite:true.

Returns a requestId; poll get_result until terminal "deleted".)";

struct Arguments {
  std::optional<std::string> udiName;

  static auto arguments() {
    return std::tuple(argument("udiName", &Arguments::udiName,
                               "Exact name of the UDI to delete (see describe_project's "
                               "userDefinedInteractions).")
                          .required());
  }
};

ToolsCallResult call(const Arguments& arguments, const ToolServices& services) {
  const auto given = arguments.udiName.value_or("");
  const auto udiName = trimWhitespace(given);
  if (udiName.empty()) return invalidArguments("delete_udi requires udiName.");

  auto request = Dispatch::newRequest<AgentLibraryRequest>(services);
  request.action = AgentLibraryRequest::Action::deleteUdi;
  request.udiName = udiName;
  return dispatch(
      request,
      {"Deletion", "\n  UDI name:   " + request.udiName,
       " — terminal \"deleted\" confirms removal. Tests already embedding this UDI keep their copy "
       "and keep running."},
      services);
}

}  // namespace delete_udi

namespace reset_world_map {

constexpr std::string_view name = "reset_world_map";

constexpr std::string_view description =
    R"(Reset the WORLD MAP for a project's app — the charted screens, actions, and navigation edges describe_project shows under `worldMap`.

Use it when the UI changed enough that the old chart misleads, or to baseline a fresh exploration. Only exploration sessions (explore_flow) rebuild the map; deterministic runs never chart. Tests, UDIs, and learned step positions are NOT touched; this erases exploration knowledge only.

Returns a requestId; poll get_result until terminal "deleted".)";

struct Arguments {
  std::optional<std::string> projectName;

  static auto arguments() {
    return std::tuple(argument("projectName", &Arguments::projectName,
                               "Exact name of the Corvane project whose world map is reset (see "
                               "describe_project).")
                          .required());
  }
};

ToolsCallResult call(const Arguments& arguments, const ToolServices& services) {
  const auto given = arguments.projectName.value_or("");
  const auto projectName = trimWhitespace(given);
  if (projectName.empty()) return invalidArguments("reset_world_map requires projectName.");

  auto request = Dispatch::newRequest<AgentLibraryRequest>(services);
  request.action = AgentLibraryRequest::Action::resetWorldMap;
  request.projectName = projectName;
  return dispatch(
      request,
      {"World-map reset", "\n  Project:    " + request.projectName,
       " — terminal \"deleted\" confirms the reset. The map rebuilds from the next exploration "
       "session."},
      services);
}

}  // namespace reset_world_map

}  // namespace

MCPTool makeExtractUdiTool(const ToolServices& services) {
  using namespace extract_udi;
  return {
      name, description, [] { return schemaOf<Arguments>(OtherProperties::refused); },
      [services](ToolCall sent) { return call(takeArgumentsIfAny<Arguments>(sent), services); }};
}

MCPTool makeDeleteUdiTool(const ToolServices& services) {
  using namespace delete_udi;
  return {
      name, description, [] { return schemaOf<Arguments>(OtherProperties::refused); },
      [services](ToolCall sent) { return call(takeArgumentsIfAny<Arguments>(sent), services); }};
}

MCPTool makeResetWorldMapTool(const ToolServices& services) {
  using namespace reset_world_map;
  return {
      name, description, [] { return schemaOf<Arguments>(OtherProperties::refused); },
      [services](ToolCall sent) { return call(takeArgumentsIfAny<Arguments>(sent), services); }};
}

}  // namespace corvane
