#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstring>
#include <string>

#include "corvane_mcp/trace/AreaAverage.h"
#include "corvane_mcp/trace/PictureFormats.h"

namespace corvane {

namespace {

constexpr std::size_t channels = Picture::bytesPerPixel;

/// Composes a row on black: multiplies every colour by its alpha.
void composeOnBlack(std::span<std::uint8_t> row) {
  std::uint32_t common = ~std::uint32_t{0};
  for (std::size_t i = 0; i < row.size(); i += channels) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, &row[i], channels);
    common &= pixel;
  }
  std::array<std::uint8_t, channels> commonBits{};
  std::memcpy(commonBits.data(), &common, channels);
  if (commonBits[3] == 255) return;
  for (std::size_t i = 0; i < row.size(); i += channels) {
    const unsigned alpha = row[i + 3];
    for (std::size_t c = i; c < i + 3; ++c) {
      row[c] = static_cast<std::uint8_t>((row[c] * alpha + 127) / 255);
    }
  }
}

/// One PNG being read. The library reports errors by longjmp, which no C++ object may be in the way
/// of: every call into it goes through guarded(), whose argument makes only such calls.
class PngReader {
 public:
  explicit PngReader(PictureInput& input);
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;
  ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }

  /// Reads what stands before the pixels, and arranges for rows of four bytes a pixel.
  void readHeader();
  /// Reads all the pixels.
  [[nodiscard]] Picture readPixels(PictureSize fitted);
  /// Reads what stands after the pixels.
  void readEnd() {
    guarded([this] { png_read_end(png, info); });
  }

  [[nodiscard]] PictureSize fullSize() const { return size; }
  [[nodiscard]] Orientation orientation();
  [[nodiscard]] std::vector<std::uint8_t> colourProfile();

 private:
  [[noreturn]] static void onError(png_structp png, png_const_charp message);
  static void onWarning(png_structp, png_const_charp) {}
  static void onRead(png_structp png, png_bytep into, std::size_t count);

  template <class Call>
  void guarded(Call call) {
    if (setjmp(png_jmpbuf(png)) != 0) {
      throw PictureError(std::string("unreadable PNG: ") + errorText.data());
    }
    call();
  }

  void chooseChunks();
  void arrangeRows();
  void readRow() {
    guarded([this] { png_read_row(png, row.data(), nullptr); });
  }
  [[nodiscard]] Picture readInOrder(PictureSize fitted);
  [[nodiscard]] Picture readInterlaced(PictureSize fitted);

  PictureInput& input;
  png_structp png = nullptr;
  png_infop info = nullptr;
  std::array<char, 80> errorText{};
  PictureSize size;
  bool hasAlpha = false;
  bool isInterlaced = false;
  std::vector<std::uint8_t> row;
};

PngReader::PngReader(PictureInput& input) : input(input) {
  png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, onError, onWarning);
  if (png) info = png_create_info_struct(png);
  if (!info) {
    png_destroy_read_struct(&png, nullptr, nullptr);
    throw PictureError("no memory for the PNG decoder");
  }
  png_set_read_fn(png, this, onRead);
}

void PngReader::onError(png_structp png, png_const_charp message) {
  auto& reader = *static_cast<PngReader*>(png_get_error_ptr(png));
  const std::size_t length = std::min(std::strlen(message), reader.errorText.size() - 1);
  std::memcpy(reader.errorText.data(), message, length);
  reader.errorText[length] = '\0';
  png_longjmp(png, 1);
}

void PngReader::onRead(png_structp png, png_bytep into, std::size_t count) {
  auto& input = static_cast<PngReader*>(png_get_io_ptr(png))->input;
  while (count > 0) {
    const auto ready = input.peek();
    if (ready.empty()) png_error(png, "it ends too early");
    const std::size_t taken = std::min(count, ready.size());
    std::memcpy(into, ready.data(), taken);
    input.consume(taken);
    into += taken;
    count -= taken;
  }
}

void PngReader::chooseChunks() {
  // Chunks that do not matter here are stepped over: compressed texts alone could fill the memory.
  static constexpr std::array<png_byte, 21> wanted{"gAMA\0sRGB\0iCCP\0eXIf\0"};
  static constexpr int wantedCount = 4;
  guarded([this] {
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_AS_DEFAULT, wanted.data(), wantedCount);
    // Every chunk has a checksum of its own; a second one over the pixels costs much and adds
    // little.
    png_set_option(png, PNG_IGNORE_ADLER32, PNG_OPTION_ON);
  });
}

void PngReader::readHeader() {
  chooseChunks();
  guarded([this] { png_read_info(png, info); });
  size = reasonableSize(png_get_image_width(png, info), png_get_image_height(png, info));
  isInterlaced = png_get_interlace_type(png, info) != PNG_INTERLACE_NONE;
  arrangeRows();
  row.resize(static_cast<std::size_t>(size.width) * channels);
}

void PngReader::arrangeRows() {
  hasAlpha = (png_get_color_type(png, info) & PNG_COLOR_MASK_ALPHA) != 0 ||
             png_get_valid(png, info, PNG_INFO_tRNS) != 0;
  guarded([this] {
    png_set_expand(png);
    png_set_scale_16(png);
    png_set_gray_to_rgb(png);
    png_set_filler(png, 255, PNG_FILLER_AFTER);
    png_fixed_point gamma = 0;
    const bool saysColourSpace = png_get_valid(png, info, PNG_INFO_sRGB | PNG_INFO_iCCP) != 0;
    if (!saysColourSpace && png_get_gAMA_fixed(png, info, &gamma) != 0) {
      png_set_gamma_fixed(png, PNG_DEFAULT_sRGB, gamma);
    }
    png_read_update_info(png, info);
  });
  if (png_get_rowbytes(png, info) != static_cast<std::size_t>(size.width) * channels) {
    throw PictureError("unreadable PNG: an unknown kind");
  }
}

Picture PngReader::readPixels(PictureSize fitted) {
  return isInterlaced ? readInterlaced(fitted) : readInOrder(fitted);
}

Picture PngReader::readInOrder(PictureSize fitted) {
  AreaAverage average(size, fitted);
  for (int y = 0; y < size.height; ++y) {
    readRow();
    if (hasAlpha) composeOnBlack(row);
    average.addRow(row);
  }
  return average.take();
}

Picture PngReader::readInterlaced(PictureSize fitted) {
  ScatteredAreaAverage average(size, fitted);
  for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass) {
    const int columns = static_cast<int>(
        PNG_PASS_COLS(static_cast<unsigned>(size.width), static_cast<unsigned>(pass)));
    const int rowStep = 1 << PNG_PASS_ROW_SHIFT(pass);
    const auto pixels = std::span(row).first(static_cast<std::size_t>(columns) * channels);
    if (columns == 0) continue;
    for (int y = PNG_PASS_START_ROW(pass); y < size.height; y += rowStep) {
      readRow();
      if (hasAlpha) composeOnBlack(pixels);
      average.add(pixels, y, PNG_PASS_START_COL(pass), 1 << PNG_PASS_COL_SHIFT(pass));
    }
  }
  return average.take();
}

Orientation PngReader::orientation() {
  png_uint_32 length = 0;
  png_bytep exif = nullptr;
  if (png_get_eXIf_1(png, info, &length, &exif) == 0) return Orientation::upright;
  return exifOrientation({exif, length});
}

std::vector<std::uint8_t> PngReader::colourProfile() {
  png_charp name = nullptr;
  int compression = 0;
  png_bytep profile = nullptr;
  png_uint_32 length = 0;
  if (png_get_iCCP(png, info, &name, &compression, &profile, &length) == 0) return {};
  return {profile, profile + length};
}

}  // namespace

bool isPng(std::span<const std::uint8_t> bytes) {
  constexpr std::size_t signatureSize = 8;
  return bytes.size() >= signatureSize && png_sig_cmp(bytes.data(), 0, signatureSize) == 0;
}

DecodedPicture decodePng(PictureInput& input, int largestSide) {
  PngReader reader(input);
  reader.readHeader();
  Picture picture = reader.readPixels(fitted(reader.fullSize(), largestSide));
  reader.readEnd();
  return {std::move(picture), reader.fullSize(), reader.orientation(), reader.colourProfile()};
}

}  // namespace corvane
