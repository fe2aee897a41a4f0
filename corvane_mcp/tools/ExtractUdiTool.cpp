#include "corvane_mcp/tools/ExtractUdiTool.h"

#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/tools/Dispatch.h"
#include "corvane_mcp/tools/LibraryDispatch.h"
#include "corvane_mcp/tools/ToolArguments.h"

namespace corvane {

namespace {

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

}  // namespace

std::string_view ExtractUdiTool::description() const {
  return R"(Extract a contiguous range of steps from an EXISTING test into a named, reusable building block (a user-defined interaction, "UDI"). Embed it through create_test's userDefined reference; the steps keep their learned on-screen positions.

UDI or runTest? A UDI is a low-level, self-contained ingredient: it performs ONE generic sub-task and verifies nothing on its own. A standalone flow that runs and verifies something is reused with runTest instead. Rule of thumb: a MEANS (operate a control, enter a value, get past a prompt) → UDI; an end-to-end flow that asserts a feature works → runTest.

Call describe_project first: it lists each test's steps with their 0-based indexes, and the existing catalog under userDefinedInteractions — check it for duplicates before you extract another. Steps containing '$param' placeholders become UDI parameters automatically.

Returns a requestId; poll get_result until terminal "extracted", which carries the udi {name, stepCount, parameterNames}.

Refreshing a stale UDI: overwrite:true replaces the UDI of the same name in place. The template id is preserved; future embeds use the new steps, while tests that already embed it keep their copy until they are re-created. delete_udi retires a UDI for good.)";
}

AnyCodable ExtractUdiTool::inputSchema() const {
  return schemaOf<Arguments>(OtherProperties::refused);
}

Task<ToolsCallResult> ExtractUdiTool::call(ToolCall call) const {
  auto arguments = takeArgumentsIfAny<Arguments>(call);
  const std::string projectName = arguments.projectName.value_or("");
  const std::string testName = arguments.testName.value_or("");
  const std::string udiName(trimWhitespace(arguments.udiName.value_or("")));
  if (projectName.empty() || testName.empty() || udiName.empty() || !arguments.fromStep ||
      !arguments.toStep) {
    co_return invalidArguments(
        "extract_udi requires projectName, testName, fromStep, toStep, and udiName.");
  }
  if (*arguments.fromStep < 0 || *arguments.toStep < *arguments.fromStep) {
    co_return invalidArguments(
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
  co_return dispatchLibraryRequest(
      request,
      {"Extraction",
       "\n  Source:     '" + testName + "' steps " + std::to_string(request.fromStep) + "-" +
           std::to_string(request.toStep) + " in '" + projectName + "'\n  UDI name:   " + udiName,
       " — terminal \"extracted\" carries the udi payload; then embed it via create_test "
       "{\"type\":\"userDefined\",\"udiName\":\"" +
           udiName + "\"}."},
      services);
}

}  // namespace corvane
