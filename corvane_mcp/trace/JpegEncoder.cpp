#include "corvane_mcp/trace/JpegEncoder.h"

#include <cmath>
#include <memory>

#include "corvane_mcp/trace/JpegErrors.h"

namespace corvane {

namespace {

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

std::string encodeJpeg(const Picture& picture, double quality,
                       std::span<const std::uint8_t> colourProfile) {
  JpegWriter writer(largestResult(picture.size, colourProfile.size()));
  writer.write(picture, static_cast<int>(std::lround(quality * 100)), colourProfile);
  return writer.take();
}

}  // namespace corvane
