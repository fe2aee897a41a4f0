#pragma once

#include <optional>
#include <string>

#include "CorvaneCore/json/Record.h"

namespace corvane {

struct ServerInfo {
  std::string name;
  std::string version;

  static constexpr auto fields() {
    using R = ServerInfo;
    return FieldList(field("name", &R::name), field("version", &R::version));
  }
};

struct ToolsCapability {
  /// Always false: the tool list never changes while the server runs.
  bool listChanged = false;

  static constexpr auto fields() {
    using R = ToolsCapability;
    return FieldList(field("listChanged", &R::listChanged));
  }
};

struct ServerCapabilities {
  std::optional<ToolsCapability> tools;

  static constexpr auto fields() {
    using R = ServerCapabilities;
    return FieldList(field("tools", &R::tools));
  }
};

/// What `initialize` answers.
struct InitializeResult {
  std::string protocolVersion;
  ServerCapabilities capabilities;
  ServerInfo serverInfo;

  static constexpr auto fields() {
    using R = InitializeResult;
    return FieldList(field("protocolVersion", &R::protocolVersion),
                     field("capabilities", &R::capabilities), field("serverInfo", &R::serverInfo));
  }
};

}  // namespace corvane
