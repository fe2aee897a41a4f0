#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

#include "CorvaneCore/capture/CaptureSession.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/trace/CaptureManifest.h"
#include "corvane_mcp/trace/Picture.h"
#include "corvane_mcp/trace/PictureFormats.h"
#include "corvane_mcp/trace/TraceImageReader.h"
#include "fuzz/Require.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"

namespace {

using Block = corvane::ContentBlock;
using corvane::PictureInput;
using corvane::testing::require;
namespace TraceImageReader = corvane::TraceImageReader;

/// Whatever comes out is a JPEG that fits: it is read back with the same limits.
void requireSmallJpeg(std::string_view jpeg) {
  constexpr int largestSide = 800;
  PictureInput input({reinterpret_cast<const std::uint8_t*>(jpeg.data()), jpeg.size()});
  const auto [width, height] = corvane::decodeJpeg(input, largestSide).fullSize;
  require(width <= largestSide && height <= largestSide, "a picture gets small");
}

void show(std::span<const std::uint8_t> picture, const corvane::CaptureFrame& frame) {
  try {
    PictureInput input(picture);
    requireSmallJpeg(TraceImageReader::downscaledJPEG(input, frame.touches));
  } catch (const corvane::PictureError&) {
    // Most pictures are broken, and say so.
  }
}

/// Shows step 0 of a capture session of these files, as get_result does.
void showSession(std::string_view manifest, std::string_view picture) {
  static const corvane::testing::TemporaryHome session;
  corvane::testing::TestFiles::write(corvane::CaptureSession::fileURL(session.path()), manifest);
  corvane::testing::TestFiles::write(session.path() / "a", picture);
  const auto blocks = TraceImageReader::blocks(session.path(), 0);
  require(!blocks.empty() && std::holds_alternative<Block::Text>(blocks.front().choice),
          "a step has a caption");
  for (const auto& block : blocks) {
    const auto* text = std::get_if<Block::Text>(&block.choice);
    require(!text || corvane::isValidUtf8(text->text), "texts are UTF-8");
  }
}

std::uint32_t numberAt(std::span<const std::uint8_t> bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
         std::uint32_t{bytes[2]} << 8 | bytes[3];
}

/// Makes the checksums of a PNG right, so that changes get past them.
void mendChecksums(std::span<std::uint8_t> png) {
  constexpr std::size_t signature = 8;
  constexpr std::size_t lengthAndType = 8;
  constexpr std::size_t checksum = 4;
  if (!corvane::isPng(png)) return;
  auto rest = png.subspan(signature);
  while (rest.size() >= lengthAndType + checksum) {
    const std::size_t length = numberAt(rest);
    if (length > rest.size() - lengthAndType - checksum) return;
    const auto checked = rest.subspan(4, length + 4);
    auto sum = ::crc32(0, checked.data(), static_cast<uInt>(checked.size()));
    rest = rest.subspan(lengthAndType + length);
    for (std::size_t i = checksum; i-- > 0; sum >>= 8) rest[i] = static_cast<std::uint8_t>(sum);
    rest = rest.subspan(checksum);
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
  const std::size_t changed = LLVMFuzzerMutate(data, size, maxSize);
  const std::string_view text(reinterpret_cast<const char*>(data), changed);
  const std::size_t end = text.find('\0');
  // Now and then a checksum stays wrong.
  if (end != std::string_view::npos && seed % 8 != 0) {
    mendChecksums(std::span(data, changed).subspan(end + 1));
  }
  return changed;
}

/// The input is a manifest, a NUL and a picture: the file "a" of a capture session, which also
/// stands in for every picture that the manifest names for step 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::size_t end = std::min(text.find('\0'), size);
  const auto picture = std::span(data, size).subspan(std::min(end + 1, size));
  showSession(text.substr(0, end), text.substr(std::min(end + 1, size)));
  corvane::StepFrames frames;
  try {
    frames = corvane::readStepFrames(text.substr(0, end), 0);
  } catch (const corvane::DecodeError&) {
    frames.before.emplace();
  }
  if (frames.before) show(picture, *frames.before);
  if (frames.after) show(picture, *frames.after);
  return 0;
}
