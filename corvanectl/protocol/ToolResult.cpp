#include "corvanectl/protocol/ToolResult.h"

#include "corvanectl/protocol/ProtocolError.h"

namespace corvane {

namespace {

const std::string& stringMember(const AnyCodable& block, std::string_view key) {
  const AnyCodable* value = block.find(key);
  const std::string* text = value ? value->string() : nullptr;
  if (!text) {
    throw ProtocolError("a block of the tool's answer has no text under '" + std::string(key) +
                        "'");
  }
  return *text;
}

ToolResult::Block blockFrom(const AnyCodable& block) {
  const std::string& type = stringMember(block, "type");
  if (type == "text") return ToolResult::Text{stringMember(block, "text")};
  if (type == "image") {
    return ToolResult::Image{stringMember(block, "data"), stringMember(block, "mimeType")};
  }
  return ToolResult::Other{type};
}

}  // namespace

ToolResult ToolResult::from(const AnyCodable& result) {
  const AnyCodable* content = result.find("content");
  const AnyCodable::Array* blocks = content ? content->array() : nullptr;
  if (!blocks) throw ProtocolError("the tool's answer has no list of content blocks");
  ToolResult decoded;
  decoded.content.reserve(blocks->size());
  for (const AnyCodable& block : *blocks) decoded.content.push_back(blockFrom(block));
  const AnyCodable* isError = result.find("isError");
  decoded.isError = isError && *isError == AnyCodable(true);
  return decoded;
}

std::string ToolResult::firstText() const {
  const Text* first = content.empty() ? nullptr : std::get_if<Text>(&content.front());
  return first ? first->text : std::string();
}

}  // namespace corvane
