#pragma once

#include <optional>
#include <string>

#include "CorvaneCore/json/Record.h"

namespace corvane {

/// The `params` of a `tools/call`. Other members, `_meta` among them, are not part of it.
struct ToolsCallParams {
  std::string name;
  /// Handed to the tool unchanged.
  std::optional<AnyCodable> arguments;

  static constexpr auto fields() {
    using R = ToolsCallParams;
    return FieldList(field("name", &R::name), field("arguments", &R::arguments));
  }
};

}  // namespace corvane
