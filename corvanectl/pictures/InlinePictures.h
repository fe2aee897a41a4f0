#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "corvanectl/pictures/TerminalProbe.h"

namespace corvane {

/// Shows pictures between the lines of a terminal that can. The terminal is asked when the first
/// picture comes, with the cursor at the beginning of an empty line.
class InlinePictures {
 public:
  /// `interruption` outlives this.
  InlinePictures(int output, Interruption& interruption)
      : output(output), interruption(interruption) {}

  /// What to write to the terminal so that the picture, the bytes of a JPEG or PNG, is seen there;
  /// nothing when the terminal cannot show it or it is damaged. Throws Interrupted.
  [[nodiscard]] std::optional<std::string> show(std::string_view file);

 private:
  int output;
  Interruption& interruption;
  std::optional<TerminalGraphics> graphics;
};

/// The size in pixels that a picture is shown in: whole and with some lines beside it, never
/// enlarged.
[[nodiscard]] PixelSize shownSize(PixelSize picture, const TerminalGraphics& graphics);

/// What shows the picture on a terminal like this; nothing when none can be shown. Throws
/// PictureError when it is damaged.
[[nodiscard]] std::optional<std::string> inlineImage(std::string_view file,
                                                     const TerminalGraphics& graphics);

}  // namespace corvane
