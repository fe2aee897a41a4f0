#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "CorvaneCore/json/AnyCodable.h"
#include "corvanectl/commands/Session.h"

namespace corvane::ctl {

/// A tool answered that it cannot do what it was asked. The description is what it says.
class ToolRefusal : public std::runtime_error {
 public:
  explicit ToolRefusal(std::string_view answer);

  /// The word that the answer names the error by, like "unknown_project"; empty when it names none.
  std::string code;
};

/// Calls a tool and gives its answer. Throws ToolRefusal and what Session::callTool throws.
[[nodiscard]] ToolResult ask(Session& session, std::string_view tool, AnyCodable::Object arguments);

/// The JSON object on the last line of an answer, which is how get_status and describe_project
/// answer. Throws ProtocolError when there is none.
[[nodiscard]] AnyCodable::Object snapshotOf(const ToolResult& answer, std::string_view tool);

}  // namespace corvane::ctl
