#pragma once

#include <array>
#include <string>
#include <variant>

#include "CorvaneCore/json/Record.h"

namespace corvane {

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

}  // namespace corvane
