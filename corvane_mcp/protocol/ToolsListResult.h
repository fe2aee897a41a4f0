#pragma once

#include <string>
#include <vector>

#include "CorvaneCore/json/Record.h"

namespace corvane {

/// A tool as clients see it.
struct ToolDescriptor {
  std::string name;
  std::string description;
  /// The JSON Schema of the tool's arguments.
  AnyCodable inputSchema;

  static constexpr auto fields() {
    using R = ToolDescriptor;
    return FieldList(field("name", &R::name), field("description", &R::description),
                     field("inputSchema", &R::inputSchema));
  }
};

/// What `tools/list` answers.
struct ToolsListResult {
  std::vector<ToolDescriptor> tools;

  static constexpr auto fields() {
    using R = ToolsListResult;
    return FieldList(field("tools", &R::tools));
  }
};

}  // namespace corvane
