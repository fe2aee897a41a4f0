#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "CorvaneCore/json/Record.h"

// What the methods of the Model Context Protocol are asked with and answer.

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

/// The `params` of `initialize`.
struct InitializeParams {
  std::string protocolVersion;
  ServerCapabilities capabilities;
  /// What the client says of itself, in the form in which servers do.
  ServerInfo clientInfo;

  static constexpr auto fields() {
    using R = InitializeParams;
    return FieldList(field("protocolVersion", &R::protocolVersion),
                     field("capabilities", &R::capabilities), field("clientInfo", &R::clientInfo));
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

/// The `params` of a `notifications/progress`.
struct ProgressParams {
  /// As the call's `_meta` had it, whatever its kind.
  AnyCodable progressToken;
  double progress = 0;
  std::optional<double> total;
  std::string message;

  static constexpr auto fields() {
    using R = ProgressParams;
    return FieldList(field("progressToken", &R::progressToken), field("progress", &R::progress),
                     field("total", &R::total), field("message", &R::message));
  }
};

/// One piece of a tool's answer.
struct ContentBlock {
  enum class Kind { text, image };

  struct Text {
    static constexpr Kind kind = Kind::text;

    std::string text;

    static constexpr auto fields() { return FieldList(field("text", &Text::text)); }
  };
  struct Image {
    static constexpr Kind kind = Kind::image;

    /// The image's bytes in standard base64.
    std::string data;
    std::string mimeType;

    static constexpr auto fields() {
      return FieldList(field("data", &Image::data), field("mimeType", &Image::mimeType));
    }
  };

  static constexpr std::string_view tagKey = "type";
  static constexpr std::string_view unknownTag = "Unsupported content block type: ";

  std::variant<Text, Image> choice;

  [[nodiscard]] static ContentBlock text(std::string text) { return {Text{std::move(text)}}; }
  [[nodiscard]] static ContentBlock image(std::string base64, std::string mimeType) {
    return {Image{std::move(base64), std::move(mimeType)}};
  }
};

template <>
struct Vocabulary<ContentBlock::Kind> {
  using Kind = ContentBlock::Kind;
  static constexpr std::array rows{
      VocabularyRow<Kind>{Kind::text, "text"},
      VocabularyRow<Kind>{Kind::image, "image"},
  };
};

/// What every tool returns: its answer in order, and whether it reports a failure.
struct ToolsCallResult {
  std::vector<ContentBlock> content;
  bool isError = false;

  /// An answer of one text block.
  [[nodiscard]] static ToolsCallResult success(std::string text) {
    return withText(std::move(text), false);
  }
  /// A failure that the tool reports itself, as one text block.
  [[nodiscard]] static ToolsCallResult failure(std::string text) {
    return withText(std::move(text), true);
  }

  static constexpr auto fields() {
    using R = ToolsCallResult;
    return FieldList(field("content", &R::content), field("isError", &R::isError));
  }

 private:
  static ToolsCallResult withText(std::string text, bool isError) {
    ToolsCallResult result;
    result.content.push_back(ContentBlock::text(std::move(text)));
    result.isError = isError;
    return result;
  }
};

}  // namespace corvane
