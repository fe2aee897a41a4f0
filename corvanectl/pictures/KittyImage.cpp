#include <zlib.h>

#include <algorithm>
#include <stdexcept>

#include "CorvaneCore/text/Base64.h"
#include "corvanectl/pictures/InlineImage.h"

namespace corvane {

namespace {

/// Red, green and blue of every pixel.
std::string samples(const Picture& picture) {
  std::string bytes;
  bytes.reserve(picture.bytes.size() / 4 * 3);
  for (std::size_t i = 0; i < picture.bytes.size(); i += Picture::bytesPerPixel) {
    bytes.append(reinterpret_cast<const char*>(&picture.bytes[i]), 3);
  }
  return bytes;
}

std::string deflated(std::string_view bytes) {
  uLongf size = ::compressBound(static_cast<uLong>(bytes.size()));
  std::string result(size, '\0');
  const int status = ::compress2(reinterpret_cast<Bytef*>(result.data()), &size,
                                 reinterpret_cast<const Bytef*>(bytes.data()),
                                 static_cast<uLong>(bytes.size()), Z_BEST_SPEED);
  if (status != Z_OK) throw std::runtime_error("a picture could not be compressed");
  result.resize(size);
  return result;
}

}  // namespace

std::string kittyImage(const Picture& picture) {
  // The protocol allows no longer piece.
  constexpr std::size_t longestPiece = 4096;
  const std::string data = base64(deflated(samples(picture)));
  std::string keys = "a=T,f=24,o=z,s=" + std::to_string(picture.size.width) +
                     ",v=" + std::to_string(picture.size.height) + ",";
  std::string image;
  for (std::size_t i = 0; i < data.size(); i += longestPiece) {
    const bool isLast = i + longestPiece >= data.size();
    image += "\033_G" + keys + "q=2,m=" + (isLast ? "0;" : "1;");
    image += data.substr(i, longestPiece);
    image += "\033\\";
    keys.clear();
  }
  return image;
}

}  // namespace corvane
