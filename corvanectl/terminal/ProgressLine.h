#pragma once

#include <string>
#include <string_view>

#include "corvanectl/terminal/TextStream.h"

namespace corvane {

/// How progress is shown.
enum class ProgressStyle {
  /// One line of a terminal that is drawn over and over.
  live,
  /// Each message on a line of its own, unless it is the same as the one before.
  lines,
  none,
};

/// The progress of something that takes long. In live style the line is cut to the terminal's
/// width, and the cursor stays on it until it is erased.
class ProgressLine {
 public:
  /// `stream` outlives the line.
  ProgressLine(TextStream& stream, ProgressStyle style) : stream(&stream), style(style) {}

  void show(std::string_view message);
  /// Leaves the cursor at the beginning of an empty line, when the line is live and drawn.
  void erase();
  /// Draws an erased live line again.
  void redraw();

 private:
  TextStream* stream;
  ProgressStyle style;
  std::string shown;
  bool drawn = false;
};

}  // namespace corvane
