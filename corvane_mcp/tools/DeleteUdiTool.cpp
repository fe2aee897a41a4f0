#include "corvane_mcp/tools/DeleteUdiTool.h"

#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/tools/Dispatch.h"
#include "corvane_mcp/tools/LibraryDispatch.h"
#include "corvane_mcp/tools/ToolArguments.h"

namespace corvane {

namespace {

struct Arguments {
  std::optional<std::string> udiName;

  static auto arguments() {
    return std::tuple(argument("udiName", &Arguments::udiName,
                               "Exact name of the UDI to delete (see describe_project's "
                               "userDefinedInteractions).")
                          .required());
  }
};

}  // namespace

std::string_view DeleteUdiTool::description() const {
  return R"(Delete a user-defined interaction (UDI) from the user's library by name.

Use it to retire stale building blocks: a flow the app no longer has, or a UDI of an abandoned project (sourceProjectName in describe_project tells which project it came from). Tests that already embed the UDI keep their copy and keep running — deletion only removes the template, so that future create_test calls can no longer reference it. To REFRESH a UDI instead, call extract_udi with overwrite:true.

Returns a requestId; poll get_result until terminal "deleted".)";
}

AnyCodable DeleteUdiTool::inputSchema() const {
  return schemaOf<Arguments>(OtherProperties::refused);
}

Task<ToolsCallResult> DeleteUdiTool::call(ToolCall call) const {
  const auto given = takeArgumentsIfAny<Arguments>(call).udiName.value_or("");
  const auto udiName = trimWhitespace(given);
  if (udiName.empty()) co_return invalidArguments("delete_udi requires udiName.");

  auto request = Dispatch::newRequest<AgentLibraryRequest>(services);
  request.action = AgentLibraryRequest::Action::deleteUdi;
  request.udiName = udiName;
  co_return dispatchLibraryRequest(
      request,
      {"Deletion", "\n  UDI name:   " + request.udiName,
       " — terminal \"deleted\" confirms removal. Tests already embedding this UDI keep their copy "
       "and keep running."},
      services);
}

}  // namespace corvane
