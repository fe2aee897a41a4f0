#include "corvane_standin/capture/PngPicture.h"

#include <png.h>

#include <stdexcept>

namespace corvane::standin {

static_assert(sizeof(Colour) == 3, "a palette is handed to libpng as it is");

std::string encodePng(const Canvas& canvas) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(canvas.width());
  image.height = static_cast<png_uint_32>(canvas.height());
  image.format = PNG_FORMAT_RGB_COLORMAP;
  image.flags = PNG_IMAGE_FLAG_FAST;
  image.colormap_entries = static_cast<png_uint_32>(canvas.palette().size());
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::string bytes(size, '\0');
  constexpr int rowsAsTheyLie = 0;
  if (png_image_write_to_memory(&image, bytes.data(), &size, 0, canvas.pixels().data(),
                                rowsAsTheyLie, canvas.palette().data()) == 0) {
    throw std::runtime_error(std::string("the picture cannot be encoded: ") + image.message);
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace corvane::standin
