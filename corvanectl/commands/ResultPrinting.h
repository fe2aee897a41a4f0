#pragma once

#include "CorvaneCore/json/AnyCodable.h"
#include "corvanectl/ExitStatus.h"
#include "corvanectl/commands/Session.h"
#include "corvanectl/pictures/PictureOutput.h"
#include "corvanectl/protocol/ToolResult.h"

namespace corvane {

/// Shows pictures where the command's output goes.
[[nodiscard]] inline InlinePictures inlinePictures(const CommandContext& context) {
  return {context.console.outputFile(), context.interruption};
}

/// What the user sees of one block, without a line feed at its end.
[[nodiscard]] std::string blockText(const ToolResult::Block& block, PictureOutput& pictures);

/// Prints the blocks of a tool's answer, texts exactly as they are, with a line feed between two
/// blocks. On a terminal the output ends with a line feed in any case.
void printResult(const ToolResult& result, PictureOutput& pictures, Console& console);

[[nodiscard]] inline ExitStatus exitStatusOf(const ToolResult& result) {
  return result.isError ? ExitStatus::failure : ExitStatus::success;
}

}  // namespace corvane
