#include "corvanectl/pictures/InlinePictures.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>

#include "corvane_mcp/trace/Picture.h"
#include "corvane_mcp/trace/PictureFormats.h"
#include "corvanectl/pictures/InlineImage.h"

namespace corvane {

namespace {

/// Pictures of the server are no larger; others are made so.
constexpr int largestSide = 800;

Picture decoded(std::string_view file, int side) {
  PictureInput input(std::span(reinterpret_cast<const std::uint8_t*>(file.data()), file.size()));
  DecodedPicture picture = isPng(input.peek()) ? decodePng(input, side) : decodeJpeg(input, side);
  return turnedUpright(std::move(picture.picture), picture.orientation);
}

PixelSize sizeOf(const Picture& picture) {
  return {picture.size.width, picture.size.height};
}

}  // namespace

PixelSize shownSize(PixelSize picture, const TerminalGraphics& graphics) {
  // Room for the lines that belong to it; on a tall terminal two pictures fit at a time.
  constexpr int linesBeside = 3;
  constexpr int mostRows = 40;
  const int rows = std::clamp(graphics.rows - linesBeside, 1, mostRows);
  const double scale =
      std::min({1.0, static_cast<double>(rows) * graphics.cell.height / picture.height,
                static_cast<double>(graphics.columns) * graphics.cell.width / picture.width});
  const auto scaled = [scale](int length) {
    return std::max(1, static_cast<int>(std::floor(length * scale)));
  };
  return {scaled(picture.width), scaled(picture.height)};
}

std::optional<std::string> inlineImage(std::string_view file, const TerminalGraphics& graphics) {
  if (graphics.protocol == GraphicsProtocol::none) return std::nullopt;
  Picture picture = decoded(file, largestSide);
  const PixelSize shown = shownSize(sizeOf(picture), graphics);
  if (graphics.protocol == GraphicsProtocol::iterm2) {
    const int rows = (shown.height + graphics.cell.height - 1) / graphics.cell.height;
    return itermImage(file, rows);
  }
  if (shown != sizeOf(picture)) picture = decoded(file, std::max(shown.width, shown.height));
  return graphics.protocol == GraphicsProtocol::kitty ? kittyImage(picture) : sixelImage(picture);
}

std::optional<std::string> InlinePictures::show(std::string_view file) {
  if (!graphics) graphics = probeTerminal(output, interruption);
  try {
    return inlineImage(file, *graphics);
  } catch (const PictureError&) {
    return std::nullopt;
  }
}

}  // namespace corvane
