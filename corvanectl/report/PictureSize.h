#pragma once

#include <optional>
#include <string_view>

namespace corvane::ctl {

struct PictureSize {
  int width;
  int height;
};

/// The size of a JPEG in pixels, from its header; nothing for other bytes.
[[nodiscard]] std::optional<PictureSize> jpegSize(std::string_view bytes);

}  // namespace corvane::ctl
