#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdio>

// Needs what stands above it.
#include <jpeglib.h>

// Needs that in turn.
#include <jerror.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <string_view>

#include "corvane_mcp/trace/AreaAverage.h"
#include "corvane_mcp/trace/PictureFormats.h"

namespace corvane {

namespace {

/// Receives the errors of the JPEG library. It reports them by longjmp, which no C++ object may be
/// in the way of: every call into it goes through guarded(), whose argument makes only such calls.
class JpegErrors {
 public:
  /// `intro` begins every error text; it must outlive this.
  explicit JpegErrors(const char* intro);
  JpegErrors(const JpegErrors&) = delete;
  JpegErrors& operator=(const JpegErrors&) = delete;
  ~JpegErrors() = default;

  /// Makes `library`, a compressor or decompressor that is yet to be created, report to this.
  template <class Library>
  void attachTo(Library& library) {
    library.err = &manager;
    library.client_data = this;
  }

  /// Makes `call`; throws PictureError when the library reports an error meanwhile.
  template <class Call>
  void guarded(Call call) {
    if (setjmp(comeBack) != 0) throw PictureError(std::string(intro) + text.data());
    call();
  }

  /// Ends the call that `library` is in with an error of our own; for its callbacks.
  template <class Library>
  [[noreturn]] static void fail(Library* library, const char* reason) {
    static_cast<JpegErrors*>(library->client_data)->comeBackWith(reason);
  }

 private:
  [[noreturn]] static void onError(j_common_ptr library);
  static void onMessage(j_common_ptr library, int level);
  [[noreturn]] void comeBackWith(const char* reason);

  const char* intro;
  jpeg_error_mgr manager{};
  std::jmp_buf comeBack{};
  std::array<char, JMSG_LENGTH_MAX> text{};
};

/// Whether a warning leaves the pixels as they were meant.
bool isHarmless(int warning) {
  return warning == JWRN_EXTRANEOUS_DATA || warning == JWRN_ADOBE_XFORM ||
         warning == JWRN_JFIF_MAJOR;
}

JpegErrors::JpegErrors(const char* intro) : intro(intro) {
  jpeg_std_error(&manager);
  manager.error_exit = onError;
  manager.emit_message = onMessage;
  manager.output_message = [](j_common_ptr) {};
}

void JpegErrors::onError(j_common_ptr library) {
  if (library->err->msg_code == JERR_NO_BACKING_STORE) fail(library, "it needs too much memory");
  std::array<char, JMSG_LENGTH_MAX> reason{};
  library->err->format_message(library, reason.data());
  fail(library, reason.data());
}

void JpegErrors::onMessage(j_common_ptr library, int level) {
  constexpr int warningLevel = -1;
  if (level == warningLevel && !isHarmless(library->err->msg_code)) onError(library);
}

void JpegErrors::comeBackWith(const char* reason) {
  const std::size_t length = std::min(std::strlen(reason), text.size() - 1);
  std::memcpy(text.data(), reason, length);
  text[length] = '\0';
  std::longjmp(comeBack, 1);
}

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

/// One JPEG being written, into a buffer that holds whatever the picture can become.
class JpegWriter : private JpegErrors {
 public:
  explicit JpegWriter(std::size_t largestResult);
  ~JpegWriter() { jpeg_destroy_compress(&library); }

  void write(const Picture& picture, int quality, std::span<const std::uint8_t> colourProfile);
  [[nodiscard]] std::string take() const {
    return {reinterpret_cast<const char*>(buffer.get()), capacity - destination.free_in_buffer};
  }

 private:
  static boolean onFull(j_compress_ptr library) { fail(library, "the result is too large"); }

  jpeg_compress_struct library{};
  jpeg_destination_mgr destination{};
  std::size_t capacity;
  std::unique_ptr<std::uint8_t[]> buffer;
};

JpegWriter::JpegWriter(std::size_t largestResult)
    : JpegErrors("cannot write the JPEG: "),
      capacity(largestResult),
      // Left uninitialised, so that only the part in use takes memory.
      buffer(std::make_unique_for_overwrite<std::uint8_t[]>(largestResult)) {
  attachTo(library);
  guarded([this] { jpeg_create_compress(&library); });
  destination.next_output_byte = buffer.get();
  destination.free_in_buffer = capacity;
  destination.init_destination = [](j_compress_ptr) {};
  destination.empty_output_buffer = onFull;
  destination.term_destination = [](j_compress_ptr) {};
  library.dest = &destination;
}

void JpegWriter::write(const Picture& picture, int quality,
                       std::span<const std::uint8_t> colourProfile) {
  library.image_width = static_cast<JDIMENSION>(picture.size.width);
  library.image_height = static_cast<JDIMENSION>(picture.size.height);
  library.input_components = static_cast<int>(Picture::bytesPerPixel);
  library.in_color_space = JCS_EXT_RGBX;
  guarded([&] {
    jpeg_set_defaults(&library);
    jpeg_set_quality(&library, quality, TRUE);
    jpeg_start_compress(&library, TRUE);
    if (!colourProfile.empty()) {
      jpeg_write_icc_profile(&library, colourProfile.data(),
                             static_cast<unsigned>(colourProfile.size()));
    }
    for (int y = 0; y < picture.size.height; ++y) {
      // The library's signature lacks the const; it only reads the rows.
      JSAMPROW row = const_cast<JSAMPROW>(picture.at(0, y));
      jpeg_write_scanlines(&library, &row, 1);
    }
    jpeg_finish_compress(&library);
  });
}

/// An upper bound: no coding is longer than three bytes a pixel of whole blocks, beside the header.
std::size_t largestResult(PictureSize size, std::size_t profileSize) {
  constexpr std::size_t block = 16;
  constexpr std::size_t header = 4096;
  const auto padded = [](int side) {
    return (static_cast<std::size_t>(side) + block - 1) / block * block;
  };
  return padded(size.width) * padded(size.height) * 3 + header + profileSize;
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

std::string encodeJpeg(const Picture& picture, double quality,
                       std::span<const std::uint8_t> colourProfile) {
  JpegWriter writer(largestResult(picture.size, colourProfile.size()));
  writer.write(picture, static_cast<int>(std::lround(quality * 100)), colourProfile);
  return writer.take();
}

}  // namespace corvane
