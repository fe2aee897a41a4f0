#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/capture/CaptureSession.h"

namespace corvane {

/// One screenshot of a capture session, as far as its manifest makes sense.
struct CaptureFrame {
  /// As the manifest has it: not trusted, and empty when it names none.
  std::string imageFileName;
  std::vector<Touch> touches;
};

/// The screenshots of one step.
struct StepFrames {
  std::optional<CaptureFrame> before;
  std::optional<CaptureFrame> after;

  [[nodiscard]] bool empty() const { return !before && !after; }
};

/// Picks the frames of `stepIndex` out of a manifest's text. A frame taken on failure goes before
/// one taken after the step; of several frames of one status the last counts. Frames and touches
/// that make no sense are passed over; a touch without both ends, as numbers, is a tap. Throws
/// DecodeError when the text is no manifest.
[[nodiscard]] StepFrames readStepFrames(std::string_view manifest, std::int64_t stepIndex);

}  // namespace corvane
