#pragma once

#include <string>
#include <utility>
#include <vector>

#include "CorvaneCore/json/Record.h"
#include "corvane_mcp/protocol/ContentBlock.h"

namespace corvane {

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
