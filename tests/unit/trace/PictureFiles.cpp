#include "tests/unit/trace/PictureFiles.h"

#include <initializer_list>

namespace corvane::testing {

namespace {

void appendNumber(std::string& text, unsigned value, int length, bool bigEndian) {
  for (int i = 0; i < length; ++i) {
    const int shift = 8 * (bigEndian ? length - 1 - i : i);
    text += static_cast<char>(value >> shift & 0xFF);
  }
}

}  // namespace

std::span<const std::uint8_t> asBytes(std::string_view file) {
  return {reinterpret_cast<const std::uint8_t*>(file.data()), file.size()};
}

std::string exifData(int orientation, bool bigEndian) {
  std::string data(bigEndian ? "MM" : "II");
  const auto append = [&](unsigned value, int length) {
    appendNumber(data, value, length, bigEndian);
  };
  append(42, 2);
  append(8, 4);
  append(2, 2);  // entries: the width of the picture, then its orientation
  for (const auto& [tag, value] :
       {std::pair{0x0100U, 7U}, {0x0112U, static_cast<unsigned>(orientation)}}) {
    append(tag, 2);
    append(3, 2);
    append(1, 4);
    append(value, 2);
    append(0, 2);
  }
  append(0, 4);
  return data;
}

std::string colourProfile(std::string_view colourSpace, std::size_t size) {
  std::string profile(size, '\0');
  std::string length;
  appendNumber(length, static_cast<unsigned>(size), 4, true);
  profile.replace(0, 4, length);
  profile.replace(8, 1, "\4");
  profile.replace(12, 4, "mntr");
  profile.replace(16, 4, colourSpace);
  profile.replace(20, 4, "XYZ ");
  profile.replace(36, 4, "acsp");
  // The illuminant that every profile has, and no tags.
  const std::string_view illuminant("\0\0\xf6\xd6\0\1\0\0\0\0\xd3\x2d", 12);
  profile.replace(68, illuminant.size(), illuminant);
  // The rest does not matter, but what compresses to nothing is not taken for a profile.
  constexpr std::size_t afterTagCount = 132;
  unsigned state = 1;
  for (std::size_t i = afterTagCount; i < size; ++i) {
    state = state * 1664525 + 1013904223;
    profile[i] = static_cast<char>(state >> 24);
  }
  return profile;
}

}  // namespace corvane::testing
