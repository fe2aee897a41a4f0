#include "corvanectl/report/PictureSize.h"

#include <cstddef>

namespace corvane::ctl {

namespace {

int twoBytes(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]) << 8 | static_cast<unsigned char>(bytes[at + 1]);
}

/// Whether the segment tells the size: it begins a frame, of whatever kind of coding.
bool beginsFrame(unsigned char marker) {
  constexpr unsigned char huffmanTables = 0xC4;
  constexpr unsigned char extensions = 0xC8;
  constexpr unsigned char arithmeticTables = 0xCC;
  return marker >= 0xC0 && marker <= 0xCF && marker != huffmanTables && marker != extensions &&
         marker != arithmeticTables;
}

}  // namespace

std::optional<PictureSize> jpegSize(std::string_view bytes) {
  if (!bytes.starts_with("\xFF\xD8")) return std::nullopt;
  // Marker, length, precision, height, width.
  constexpr std::size_t frameHeader = 9;
  std::size_t at = 2;
  while (at + frameHeader <= bytes.size() && bytes[at] == '\xFF') {
    const auto marker = static_cast<unsigned char>(bytes[at + 1]);
    if (beginsFrame(marker)) return PictureSize{twoBytes(bytes, at + 7), twoBytes(bytes, at + 5)};
    at += 2 + static_cast<std::size_t>(twoBytes(bytes, at + 2));
  }
  return std::nullopt;
}

}  // namespace corvane::ctl
