#pragma once

#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "corvane_mcp/trace/Picture.h"
#include "corvane_mcp/trace/PictureInput.h"

namespace corvane::testing {

/// The bytes of a file held in memory, as the decoders take them.
[[nodiscard]] std::span<const std::uint8_t> asBytes(std::string_view file);

/// EXIF data, from its byte-order mark on, that asks for `orientation`.
[[nodiscard]] std::string exifData(int orientation, bool bigEndian);

/// An ICC profile of `size` bytes with a valid header for samples of `colourSpace` ("RGB " or
/// "GRAY").
[[nodiscard]] std::string colourProfile(std::string_view colourSpace, std::size_t size);

struct PngOptions {
  bool interlaced = false;
  std::string exif = {};
  std::string profile = {};
  /// Of the file in 1/100000; 0 for none said.
  int gamma = 0;
};

/// `picture` as a PNG of 8-bit red, green and blue samples.
[[nodiscard]] std::string pngFile(const Picture& picture, const PngOptions& options = {});

/// What a PNG can be; `colourType` is the number in its header.
struct PngKind {
  int colourType = 0;
  int depth = 8;
  bool interlaced = false;
  /// Whether one grey or colour, or some palette entries, are declared transparent.
  bool hasTransparency = false;
};

/// Shows a kind in the names of tests.
inline void PrintTo(const PngKind& kind, std::ostream* out) {
  *out << "Type" << kind.colourType << "Depth" << kind.depth
       << (kind.interlaced ? "Interlaced" : "") << (kind.hasTransparency ? "Transparent" : "");
}

/// A PNG and the picture it shows on black.
struct MadePng {
  std::string file;
  Picture shown;
};

/// A PNG of random samples.
[[nodiscard]] MadePng randomPng(const PngKind& kind, PictureSize size);

struct JpegOptions {
  enum class Samples { colour, grey, inks };

  Samples samples = Samples::colour;
  bool progressive = false;
  /// Whether the colour is stored at half the size.
  bool halvesColour = false;
  int quality = 95;
  int restartInterval = 0;
  std::string exif = {};
  std::string profile = {};
};

/// `picture` as a JPEG. In grey the red channel counts; in inks there is no black ink.
[[nodiscard]] std::string jpegFile(const Picture& picture, const JpegOptions& options = {});

/// The picture in a JPEG, decoded by the plainest road.
[[nodiscard]] Picture pictureInJpeg(std::string_view file);

}  // namespace corvane::testing
