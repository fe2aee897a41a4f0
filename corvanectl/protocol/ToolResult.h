#pragma once

#include <string>
#include <variant>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane {

/// A tool's answer.
struct ToolResult {
  struct Text {
    std::string text;
    friend bool operator==(const Text&, const Text&) = default;
  };
  struct Image {
    /// The picture in base64, as it came.
    std::string data;
    std::string mimeType;
    friend bool operator==(const Image&, const Image&) = default;
  };
  /// A kind of block that this program does not know.
  struct Other {
    std::string type;
    friend bool operator==(const Other&, const Other&) = default;
  };
  using Block = std::variant<Text, Image, Other>;

  std::vector<Block> content;
  bool isError = false;

  /// Reads the result of a tools/call request. Throws ProtocolError when it has another form.
  [[nodiscard]] static ToolResult from(const AnyCodable& result);

  /// The text of the first block; empty when that is no text.
  [[nodiscard]] std::string firstText() const;
};

}  // namespace corvane
