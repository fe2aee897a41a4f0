#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "CorvaneCore/capture/CaptureSession.h"
#include "corvane_mcp/protocol/ContentBlock.h"
#include "corvane_mcp/trace/PictureInput.h"

namespace corvane {

/// Shows one step of a run: the screenshots that the app took before and after it, made small and
/// with the touches marked on them. A pure function of the files of a capture session: keeps
/// nothing, and may be called from several threads at once.
class TraceImageReader {
 public:
  using Touch = corvane::Touch;

  /// The blocks for `stepIndex` of the capture session in `sessionDir`: a caption and one JPEG for
  /// each screenshot, or one text that says why there are none. Files that cannot be used cost only
  /// their own block.
  [[nodiscard]] static std::vector<ContentBlock> blocks(const std::filesystem::path& sessionDir,
                                                        std::int64_t stepIndex);

  /// `picture`, a PNG or JPEG, upright, with at most 800 pixels on the longer side and `touches`
  /// marked on it, as the bytes of a JPEG. Throws PictureError.
  [[nodiscard]] static std::string downscaledJPEG(PictureInput& picture,
                                                  std::span<const Touch> touches);
};

}  // namespace corvane
