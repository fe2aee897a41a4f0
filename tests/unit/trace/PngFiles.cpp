#include <png.h>

#include <array>
#include <cstring>
#include <random>
#include <stdexcept>
#include <vector>

#include "tests/unit/trace/PictureFiles.h"

namespace corvane::testing {

namespace {

/// A PNG being written into memory. Errors end the test program.
class PngWriter {
 public:
  PngWriter()
      : png(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, onError, nullptr)),
        info(png_create_info_struct(png)) {
    png_set_write_fn(png, &file, onWrite, nullptr);
  }
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;
  ~PngWriter() { png_destroy_write_struct(&png, &info); }

  void setHeader(PictureSize size, int depth, int colourType, bool interlaced) {
    png_set_IHDR(png, info, static_cast<png_uint_32>(size.width),
                 static_cast<png_uint_32>(size.height), depth, colourType,
                 interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_BASE,
                 PNG_FILTER_TYPE_BASE);
  }

  std::string write(std::vector<std::vector<png_byte>>& rows) {
    std::vector<png_bytep> pointers;
    for (auto& row : rows) pointers.push_back(row.data());
    png_write_info(png, info);
    png_write_image(png, pointers.data());
    png_write_end(png, nullptr);
    return file;
  }

  png_structp png;
  png_infop info;

 private:
  [[noreturn]] static void onError(png_structp, png_const_charp message) {
    throw std::runtime_error(message);
  }
  static void onWrite(png_structp png, png_bytep bytes, std::size_t count) {
    auto& file = *static_cast<std::string*>(png_get_io_ptr(png));
    file.append(reinterpret_cast<const char*>(bytes), count);
  }

  std::string file;
};

/// The samples of one kind of PNG: draws them, packs them and says what they show.
class RandomSamples {
 public:
  RandomSamples(const PngKind& kind, PictureSize size) : kind(kind), size(size) {
    for (auto& entry : palette) {
      entry = {byte(), byte(), byte()};
    }
    for (auto& alpha : paletteAlpha) alpha = byte();
  }

  MadePng make() {
    MadePng made{{}, Picture(size)};
    std::vector<std::vector<png_byte>> rows;
    for (int y = 0; y < size.height; ++y) rows.push_back(makeRow(made.shown, y));
    PngWriter writer;
    writer.setHeader(size, kind.depth, kind.colourType, kind.interlaced);
    declare(writer);
    made.file = writer.write(rows);
    return made;
  }

 private:
  [[nodiscard]] bool isPalette() const { return kind.colourType == PNG_COLOR_TYPE_PALETTE; }
  [[nodiscard]] bool isGrey() const { return (kind.colourType & PNG_COLOR_MASK_COLOR) == 0; }
  [[nodiscard]] bool hasAlpha() const { return (kind.colourType & PNG_COLOR_MASK_ALPHA) != 0; }
  [[nodiscard]] unsigned maximum() const { return (1U << kind.depth) - 1; }

  png_byte byte() { return static_cast<png_byte>(random() & 0xFF); }
  /// Now and then the value that may be declared transparent.
  unsigned sample() {
    return random() % 4 == 0 ? transparentValue() : static_cast<unsigned>(random()) & maximum();
  }
  [[nodiscard]] unsigned transparentValue() const { return maximum() / 3; }
  [[nodiscard]] unsigned inEightBits(unsigned sample) const {
    return (sample * 255 + maximum() / 2) / maximum();
  }

  std::vector<png_byte> makeRow(Picture& shown, int y) {
    std::vector<unsigned> samples;
    for (int x = 0; x < size.width; ++x) makePixel(samples, shown.at(x, y));
    return packed(samples);
  }

  void makePixel(std::vector<unsigned>& samples, std::uint8_t* shown) {
    std::array<unsigned, 3> colour{sample(), sample(), sample()};
    if (isPalette() || isGrey()) colour = {colour[0], colour[0], colour[0]};
    const unsigned alpha = hasAlpha() ? sample() : maximum();
    samples.push_back(colour[0]);
    if (!isPalette() && !isGrey()) samples.insert(samples.end(), {colour[1], colour[2]});
    if (hasAlpha()) samples.push_back(alpha);
    for (std::size_t c = 0; c < 3; ++c) {
      shown[c] = static_cast<std::uint8_t>(
          (shownColour(colour, c) * shownAlpha(colour, alpha) + 127) / 255);
    }
  }

  [[nodiscard]] unsigned shownColour(const std::array<unsigned, 3>& colour, std::size_t c) const {
    return isPalette() ? palette[colour[0]][c] : inEightBits(colour[c]);
  }

  [[nodiscard]] unsigned shownAlpha(const std::array<unsigned, 3>& colour, unsigned alpha) const {
    if (!kind.hasTransparency) return inEightBits(alpha);
    if (isPalette()) return colour[0] < paletteAlpha.size() ? paletteAlpha[colour[0]] : 255;
    for (const unsigned sample : colour) {
      if (sample != transparentValue()) return 255;
    }
    return 0;
  }

  [[nodiscard]] std::vector<png_byte> packed(const std::vector<unsigned>& samples) const {
    std::vector<png_byte> bytes;
    unsigned bits = 0;
    int count = 0;
    for (const unsigned sample : samples) {
      bits = bits << kind.depth | sample;
      for (count += kind.depth; count >= 8; count -= 8) {
        bytes.push_back(static_cast<png_byte>(bits >> (count - 8)));
      }
    }
    if (count > 0) bytes.push_back(static_cast<png_byte>(bits << (8 - count)));
    return bytes;
  }

  void declare(PngWriter& writer) {
    if (isPalette()) {
      std::vector<png_color> colours;
      for (std::size_t i = 0; i <= maximum(); ++i) {
        colours.push_back({palette[i][0], palette[i][1], palette[i][2]});
      }
      png_set_PLTE(writer.png, writer.info, colours.data(), static_cast<int>(colours.size()));
    }
    if (!kind.hasTransparency) return;
    const auto value = static_cast<png_uint_16>(transparentValue());
    const png_color_16 transparent{0, value, value, value, value};
    if (isPalette()) {
      const auto count = std::min(paletteAlpha.size(), std::size_t{maximum()} + 1);
      png_set_tRNS(writer.png, writer.info, paletteAlpha.data(), static_cast<int>(count), nullptr);
    } else {
      png_set_tRNS(writer.png, writer.info, nullptr, 0, &transparent);
    }
  }

  PngKind kind;
  PictureSize size;
  std::minstd_rand random;
  std::array<std::array<png_byte, 3>, 256> palette{};
  std::array<png_byte, 100> paletteAlpha{};
};

}  // namespace

std::string pngFile(const Picture& picture, const PngOptions& options) {
  PngWriter writer;
  writer.setHeader(picture.size, 8, PNG_COLOR_TYPE_RGB, options.interlaced);
  std::string exif = options.exif;
  if (!exif.empty()) {
    png_set_eXIf_1(writer.png, writer.info, static_cast<png_uint_32>(exif.size()),
                   reinterpret_cast<png_bytep>(exif.data()));
  }
  if (!options.profile.empty()) {
    png_set_option(writer.png, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
    png_set_iCCP(writer.png, writer.info, "profile", PNG_COMPRESSION_TYPE_BASE,
                 reinterpret_cast<png_const_bytep>(options.profile.data()),
                 static_cast<png_uint_32>(options.profile.size()));
  }
  if (options.gamma > 0) png_set_gAMA_fixed(writer.png, writer.info, options.gamma);
  std::vector<std::vector<png_byte>> rows;
  for (int y = 0; y < picture.size.height; ++y) {
    auto& row = rows.emplace_back();
    for (int x = 0; x < picture.size.width; ++x) {
      row.insert(row.end(), picture.at(x, y), picture.at(x, y) + 3);
    }
  }
  return writer.write(rows);
}

MadePng randomPng(const PngKind& kind, PictureSize size) {
  return RandomSamples(kind, size).make();
}

}  // namespace corvane::testing
