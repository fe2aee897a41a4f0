#include "corvane_mcp/trace/JpegDecoder.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "corvane_mcp/trace/AreaAverage.h"
#include "corvane_mcp/trace/JpegErrors.h"

namespace corvane {

namespace {

constexpr std::size_t channels = Picture::bytesPerPixel;

/// What the library may hold at once. It keeps the coefficients of a picture in several scans.
constexpr long largestMemory = 256L << 20;

/// How much work the scans of a picture may be. A scan that refines nothing is a few bytes long,
/// and yet every coefficient is visited for it.
constexpr std::uint64_t mostScannedPixels = 1'500'000'000;
constexpr std::uint64_t scanOverheadInPixels = 1U << 16;

/// A kind of metadata segment, of which the first is kept when it is not too long.
struct Segment {
  explicit Segment(std::string_view signature)
      : signature(signature), bytes(signature.size() + largestColourProfile) {}

  [[nodiscard]] std::span<const std::uint8_t> body() const {
    return std::span(bytes).first(length).subspan(std::min(signature.size(), length));
  }

  std::string_view signature;
  std::vector<std::uint8_t> bytes;
  std::size_t length = 0;
};

/// Turns CMYK samples to red, green and blue, the way screens without colour management do.
void composeInks(std::span<std::uint8_t> row, bool inverted) {
  if (!inverted) {
    for (auto& ink : row) ink = static_cast<std::uint8_t>(255 - ink);
  }
  for (std::size_t i = 0; i < row.size(); i += channels) {
    for (std::size_t c = i; c < i + 3; ++c) {
      row[c] = static_cast<std::uint8_t>((row[c] * row[i + 3] + 127) / 255);
    }
  }
}

/// One JPEG being read.
class JpegReader : private JpegErrors {
 public:
  explicit JpegReader(PictureInput& input);
  ~JpegReader() { jpeg_destroy_decompress(&library); }

  /// Reads what stands before the pixels.
  void readHeader();
  /// Reads all the pixels.
  [[nodiscard]] Picture readPixels(PictureSize fitted);

  [[nodiscard]] PictureSize fullSize() const { return size; }
  [[nodiscard]] Orientation orientation() const { return exifOrientation(exif.body()); }
  [[nodiscard]] std::vector<std::uint8_t> colourProfile() const {
    const auto profile = icc.body();
    return {profile.begin(), profile.end()};
  }

 private:
  [[nodiscard]] static JpegReader& of(void* clientData) {
    return static_cast<JpegReader&>(*static_cast<JpegErrors*>(clientData));
  }
  static boolean onFillInput(j_decompress_ptr library);
  static void onSkipInput(j_decompress_ptr library, long count);
  static boolean onSegment(j_decompress_ptr library);
  static void onProgress(j_common_ptr library);

  void connect();
  void fillInput();
  void skipInput(std::size_t count);
  void takeInput(std::span<std::uint8_t> into);
  void takeSegment(Segment& segment, std::size_t length);
  void chooseReduction(PictureSize fitted);

  PictureInput& input;
  jpeg_decompress_struct library{};
  jpeg_source_mgr source{};
  jpeg_progress_mgr progress{};
  PictureSize size;
  Segment exif{std::string_view("Exif\0\0", 6)};
  /// Only a profile in one piece, numbered 1 of 1; those of screens are.
  Segment icc{std::string_view("ICC_PROFILE\0\1\1", 14)};
};

JpegReader::JpegReader(PictureInput& input) : JpegErrors("unreadable JPEG: "), input(input) {
  attachTo(library);
  guarded([this] { jpeg_create_decompress(&library); });
  connect();
}

void JpegReader::connect() {
  source.init_source = [](j_decompress_ptr) {};
  source.fill_input_buffer = onFillInput;
  source.skip_input_data = onSkipInput;
  source.resync_to_restart = jpeg_resync_to_restart;
  source.term_source = [](j_decompress_ptr) {};
  library.src = &source;
  progress.progress_monitor = onProgress;
  library.progress = &progress;
  library.mem->max_memory_to_use = largestMemory;
  jpeg_set_marker_processor(&library, JPEG_APP0 + 1, onSegment);
  jpeg_set_marker_processor(&library, JPEG_APP0 + 2, onSegment);
}

boolean JpegReader::onFillInput(j_decompress_ptr library) {
  of(library->client_data).fillInput();
  return TRUE;
}

void JpegReader::fillInput() {
  // What is ready was handed to the library, which has used it up.
  if (source.next_input_byte) input.consume(input.peek().size());
  const auto ready = input.peek();
  if (ready.empty()) fail(&library, "it ends too early");
  source.next_input_byte = ready.data();
  source.bytes_in_buffer = ready.size();
}

void JpegReader::onSkipInput(j_decompress_ptr library, long count) {
  if (count > 0) of(library->client_data).skipInput(static_cast<std::size_t>(count));
}

void JpegReader::skipInput(std::size_t count) {
  while (count > source.bytes_in_buffer) {
    count -= source.bytes_in_buffer;
    fillInput();
  }
  source.next_input_byte += count;
  source.bytes_in_buffer -= count;
}

void JpegReader::takeInput(std::span<std::uint8_t> into) {
  while (!into.empty()) {
    if (source.bytes_in_buffer == 0) fillInput();
    const std::size_t count = std::min(into.size(), source.bytes_in_buffer);
    std::memcpy(into.data(), source.next_input_byte, count);
    skipInput(count);
    into = into.subspan(count);
  }
}

boolean JpegReader::onSegment(j_decompress_ptr library) {
  JpegReader& reader = of(library->client_data);
  std::array<std::uint8_t, 2> lengthBytes{};
  reader.takeInput(lengthBytes);
  const std::size_t length = std::size_t{lengthBytes[0]} << 8 | lengthBytes[1];
  if (length < lengthBytes.size()) fail(library, "a segment is too short");
  const bool isExif = library->unread_marker == JPEG_APP0 + 1;
  reader.takeSegment(isExif ? reader.exif : reader.icc, length - lengthBytes.size());
  return TRUE;
}

void JpegReader::takeSegment(Segment& segment, std::size_t length) {
  if (segment.length > 0 || length > segment.bytes.size()) return skipInput(length);
  takeInput(std::span(segment.bytes).first(length));
  const std::string_view text(reinterpret_cast<const char*>(segment.bytes.data()), length);
  if (text.starts_with(segment.signature)) segment.length = length;
}

void JpegReader::onProgress(j_common_ptr library) {
  const JpegReader& reader = of(library->client_data);
  const auto scans = static_cast<std::uint64_t>(reader.library.input_scan_number);
  const std::uint64_t pixels =
      std::uint64_t{reader.library.image_width} * reader.library.image_height;
  if (scans * (pixels + scanOverheadInPixels) > mostScannedPixels) {
    fail(library, "it has too many scans");
  }
}

void JpegReader::readHeader() {
  guarded([this] { jpeg_read_header(&library, TRUE); });
  size = reasonableSize(library.image_width, library.image_height);
}

void JpegReader::chooseReduction(PictureSize fitted) {
  const auto fits = [&](int reduction) {
    return size.width >= reduction * fitted.width && size.height >= reduction * fitted.height;
  };
  for (const int reduction : {8, 4, 2, 1}) {
    library.scale_num = 1;
    library.scale_denom = static_cast<unsigned>(reduction);
    if (fits(reduction)) return;
  }
}

Picture JpegReader::readPixels(PictureSize fitted) {
  const bool inInks = library.jpeg_color_space == JCS_CMYK || library.jpeg_color_space == JCS_YCCK;
  library.out_color_space = inInks ? JCS_CMYK : JCS_EXT_RGBX;
  chooseReduction(fitted);
  guarded([this] { jpeg_start_decompress(&library); });
  AreaAverage average(size, fitted, static_cast<int>(library.scale_denom));
  std::vector<std::uint8_t> row(library.output_width * channels);
  JSAMPROW rows = row.data();
  while (library.output_scanline < library.output_height) {
    guarded([this, &rows] { jpeg_read_scanlines(&library, &rows, 1); });
    if (inInks) composeInks(row, library.saw_Adobe_marker != FALSE);
    average.addRow(row);
  }
  return average.take();
}

}  // namespace

bool isJpeg(std::span<const std::uint8_t> bytes) {
  constexpr std::array<std::uint8_t, 3> signature{0xFF, 0xD8, 0xFF};
  return bytes.size() >= signature.size() &&
         std::equal(signature.begin(), signature.end(), bytes.begin());
}

DecodedPicture decodeJpeg(PictureInput& input, int largestSide) {
  JpegReader reader(input);
  reader.readHeader();
  Picture picture = reader.readPixels(fitted(reader.fullSize(), largestSide));
  return {std::move(picture), reader.fullSize(), reader.orientation(), reader.colourProfile()};
}

}  // namespace corvane
