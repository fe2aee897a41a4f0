#pragma once

#include <chrono>
#include <optional>

#include "corvanectl/pictures/TerminalReplies.h"
#include "corvanectl/system/Interruption.h"

namespace corvane {

/// The ways in which terminals take pictures.
enum class GraphicsProtocol { none, kitty, iterm2, sixel };

/// What a terminal can show.
struct TerminalGraphics {
  GraphicsProtocol protocol = GraphicsProtocol::none;
  int columns = 80;
  int rows = 24;
  /// What it says of itself, or what is usual.
  PixelSize cell{10, 20};
};

/// Asks the terminal behind `output` what it can show, and waits for the answers, for `patience` at
/// the longest each of two times. Nothing when `output` is no terminal, when it is another
/// program's turn to read from it, or when it does not answer. The cursor is in the first column of
/// an empty line, and stays there. Meanwhile keys are not echoed, and those typed are lost; the
/// terminal is left as it was, also when the wait throws Interrupted.
[[nodiscard]] TerminalGraphics probeTerminal(int output, Interruption& interruption,
                                             Seconds patience = std::chrono::seconds(1));

}  // namespace corvane
