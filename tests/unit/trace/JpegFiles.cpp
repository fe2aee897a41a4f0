#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

// Needs what stands above it.
#include <jpeglib.h>

#include "tests/unit/trace/PictureFiles.h"

namespace corvane::testing {

namespace {

constexpr std::string_view exifSignature("Exif\0\0", 6);

J_COLOR_SPACE inputSpace(JpegOptions::Samples samples) {
  switch (samples) {
    case JpegOptions::Samples::grey:
      return JCS_GRAYSCALE;
    case JpegOptions::Samples::inks:
      return JCS_CMYK;
    case JpegOptions::Samples::colour:
      break;
  }
  return JCS_EXT_RGBX;
}

int componentsOf(JpegOptions::Samples samples) {
  return samples == JpegOptions::Samples::grey ? 1 : 4;
}

/// The samples of one row as the library takes them. Inks are stored inverted, as is the custom.
std::vector<JSAMPLE> samplesOfRow(const Picture& picture, int y, JpegOptions::Samples samples) {
  std::vector<JSAMPLE> row;
  for (int x = 0; x < picture.size.width; ++x) {
    const std::uint8_t* pixel = picture.at(x, y);
    if (samples == JpegOptions::Samples::grey) {
      row.push_back(pixel[0]);
    } else {
      row.insert(row.end(), {pixel[0], pixel[1], pixel[2], 255});
    }
  }
  return row;
}

void choose(jpeg_compress_struct& library, const JpegOptions& options) {
  jpeg_set_defaults(&library);
  jpeg_set_quality(&library, options.quality, TRUE);
  library.restart_interval = static_cast<unsigned>(options.restartInterval);
  if (options.samples == JpegOptions::Samples::inks) library.write_Adobe_marker = TRUE;
  if (options.progressive) jpeg_simple_progression(&library);
  const int sampling = options.halvesColour ? 2 : 1;
  library.comp_info[0].h_samp_factor = sampling;
  library.comp_info[0].v_samp_factor = sampling;
}

}  // namespace

std::string jpegFile(const Picture& picture, const JpegOptions& options) {
  jpeg_compress_struct library{};
  jpeg_error_mgr errors{};
  library.err = jpeg_std_error(&errors);
  jpeg_create_compress(&library);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&library, &bytes, &size);
  library.image_width = static_cast<JDIMENSION>(picture.size.width);
  library.image_height = static_cast<JDIMENSION>(picture.size.height);
  library.input_components = componentsOf(options.samples);
  library.in_color_space = inputSpace(options.samples);
  choose(library, options);
  jpeg_start_compress(&library, TRUE);
  if (!options.exif.empty()) {
    const std::string segment = std::string(exifSignature) + options.exif;
    jpeg_write_marker(&library, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(segment.data()),
                      static_cast<unsigned>(segment.size()));
  }
  if (!options.profile.empty()) {
    jpeg_write_icc_profile(&library, reinterpret_cast<const JOCTET*>(options.profile.data()),
                           static_cast<unsigned>(options.profile.size()));
  }
  for (int y = 0; y < picture.size.height; ++y) {
    auto samples = samplesOfRow(picture, y, options.samples);
    JSAMPROW row = samples.data();
    jpeg_write_scanlines(&library, &row, 1);
  }
  jpeg_finish_compress(&library);
  std::string file(reinterpret_cast<const char*>(bytes), size);
  jpeg_destroy_compress(&library);
  std::free(bytes);
  return file;
}

Picture pictureInJpeg(std::string_view file) {
  jpeg_decompress_struct library{};
  jpeg_error_mgr errors{};
  library.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&library);
  jpeg_mem_src(&library, asBytes(file).data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&library, TRUE);
  library.out_color_space = JCS_EXT_RGBX;
  jpeg_start_decompress(&library);
  Picture picture(
      {static_cast<int>(library.output_width), static_cast<int>(library.output_height)});
  while (library.output_scanline < library.output_height) {
    JSAMPROW row = picture.at(0, static_cast<int>(library.output_scanline));
    jpeg_read_scanlines(&library, &row, 1);
  }
  jpeg_finish_decompress(&library);
  jpeg_destroy_decompress(&library);
  return picture;
}

}  // namespace corvane::testing
