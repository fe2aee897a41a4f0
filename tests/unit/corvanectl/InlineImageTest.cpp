#include "corvanectl/pictures/InlineImage.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <map>

#include "CorvaneCore/text/Base64.h"
#include "corvane_mcp/trace/Picture.h"
#include "corvane_mcp/trace/PictureFormats.h"
#include "corvanectl/pictures/ColourReduction.h"
#include "corvanectl/pictures/InlinePictures.h"

namespace corvane {
namespace {

/// A picture in the given number of colours, in blocks of some pixels.
Picture blocks(PictureSize size, int colours) {
  Picture picture(size);
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const int colour = (x / 3 + y / 4 * 7) % colours;
      picture.at(x, y)[0] = static_cast<std::uint8_t>(colour * 8 % 256);
      picture.at(x, y)[1] = static_cast<std::uint8_t>(colour * 64 % 256);
      picture.at(x, y)[2] = static_cast<std::uint8_t>(255 - colour * 8 % 256);
    }
  }
  return picture;
}

std::string samples(const Picture& picture) {
  std::string bytes;
  for (std::size_t i = 0; i < picture.bytes.size(); i += 4) {
    bytes.append(reinterpret_cast<const char*>(&picture.bytes[i]), 3);
  }
  return bytes;
}

/// Takes the next kitty graphics command off `text`: its keys and its data.
std::pair<std::string, std::string> takeCommand(std::string_view& text) {
  EXPECT_TRUE(text.starts_with("\033_G"));
  const auto end = text.find("\033\\");
  const std::string_view body = text.substr(3, end - 3);
  text.remove_prefix(end + 2);
  const auto gap = body.find(';');
  return {std::string(body.substr(0, gap)), std::string(body.substr(gap + 1))};
}

TEST(KittyImage, SendsThePixelsInPieces) {
  Picture picture({200, 100});
  unsigned state = 1;
  for (auto& byte : picture.bytes) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<std::uint8_t>(state >> 24);
  }
  const std::string image = kittyImage(picture);
  std::string_view rest = image;
  std::string data;
  for (bool isFirst = true; !rest.empty(); isFirst = false) {
    const auto [keys, piece] = takeCommand(rest);
    const std::string more = rest.empty() ? "m=0" : "m=1";
    EXPECT_EQ(keys, (isFirst ? "a=T,f=24,o=z,s=200,v=100,q=2," : "q=2,") + more);
    EXPECT_LE(piece.size(), 4096U);
    EXPECT_TRUE(rest.empty() || piece.size() % 4 == 0);
    data += piece;
  }
  const std::string packed = decodeBase64(data).value();
  std::string pixels(200 * 100 * 3, '\0');
  uLongf size = pixels.size();
  ASSERT_EQ(::uncompress(reinterpret_cast<Bytef*>(pixels.data()), &size,
                         reinterpret_cast<const Bytef*>(packed.data()), packed.size()),
            Z_OK);
  EXPECT_EQ(pixels, samples(picture));
}

TEST(ItermImage, SendsTheFileAsItIs) {
  EXPECT_EQ(itermImage("foobar", 12),
            "\033]1337;File=inline=1;size=6;height=12;preserveAspectRatio=1:Zm9vYmFy\a");
}

/// Reads a sixel image the way a terminal does.
class SixelReader {
 public:
  explicit SixelReader(std::string_view text) : rest(text) {}

  /// Row by row, red, green and blue in percent; -1 for what was not painted.
  std::vector<std::array<int, 3>> read(int& width, int& height) {
    skip("\033P0;1q\"1;1;");
    width = number();
    skip(";");
    height = number();
    std::vector<std::array<int, 3>> pixels(static_cast<std::size_t>(width * height), {-1, -1, -1});
    int x = 0;
    int top = 0;
    int colour = 0;
    while (!rest.starts_with('\033')) {
      const char c = rest.front();
      rest.remove_prefix(1);
      int repeat = 1;
      if (c == '#') {
        colour = number();
        if (rest.starts_with(";2;")) {
          skip(";2;");
          std::array<int, 3> mixed{};
          for (int i = 0; i < 3; ++i) {
            if (i > 0) skip(";");
            mixed[static_cast<std::size_t>(i)] = number();
          }
          colours[colour] = mixed;
        }
        continue;
      }
      if (c == '$' || c == '-') {
        x = 0;
        top += c == '-' ? 6 : 0;
        continue;
      }
      char column = c;
      if (c == '!') {
        repeat = number();
        column = rest.front();
        rest.remove_prefix(1);
      }
      for (; repeat > 0; --repeat, ++x) {
        for (int bit = 0; bit < 6; ++bit) {
          if (((column - '?') >> bit & 1) == 0) continue;
          pixels.at(static_cast<std::size_t>((top + bit) * width + x)) = colours.at(colour);
        }
      }
    }
    skip("\033\\");
    EXPECT_TRUE(rest.empty());
    return pixels;
  }

 private:
  void skip(std::string_view text) {
    ASSERT_TRUE(rest.starts_with(text)) << rest.substr(0, 20);
    rest.remove_prefix(text.size());
  }
  int number() {
    int value = 0;
    while (!rest.empty() && rest.front() >= '0' && rest.front() <= '9') {
      value = value * 10 + (rest.front() - '0');
      rest.remove_prefix(1);
    }
    return value;
  }

  std::string_view rest;
  std::map<int, std::array<int, 3>> colours;
};

TEST(SixelImage, ShowsEveryPixel) {
  for (const PictureSize size : {PictureSize{1, 1}, PictureSize{40, 6}, PictureSize{37, 23}}) {
    const Picture picture = blocks(size, 20);
    int width = 0;
    int height = 0;
    const auto pixels = SixelReader(sixelImage(picture)).read(width, height);
    ASSERT_EQ(width, size.width);
    ASSERT_EQ(height, size.height);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
      for (std::size_t c = 0; c < 3; ++c) {
        EXPECT_NEAR(pixels[i][c], picture.bytes[i * 4 + c] * 100 / 255.0, 1) << i;
      }
    }
  }
}

TEST(SixelImage, RepeatsInsteadOfWriting) {
  EXPECT_EQ(sixelImage(Picture({100, 2})), "\033P0;1q\"1;1;100;2#0;2;0;0;0#0!100B\033\\");
}

TEST(ColourReduction, KeepsFewColoursAsTheyAre) {
  const Picture picture = blocks({64, 64}, 20);
  const auto reduced = reduceColours(picture, 255);
  EXPECT_EQ(reduced.colours.size(), 20U);
  for (std::size_t i = 0; i < reduced.pixels.size(); ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_EQ(reduced.colours[reduced.pixels[i]][c], picture.bytes[i * 4 + c]);
    }
  }
}

TEST(ColourReduction, SpreadsManyColoursOverFew) {
  Picture picture({256, 256});
  for (int y = 0; y < 256; ++y) {
    for (int x = 0; x < 256; ++x) {
      picture.at(x, y)[0] = static_cast<std::uint8_t>(x);
      picture.at(x, y)[1] = static_cast<std::uint8_t>(y);
    }
  }
  const auto reduced = reduceColours(picture, 64);
  EXPECT_EQ(reduced.colours.size(), 64U);
  double wrong = 0;
  for (std::size_t i = 0; i < reduced.pixels.size(); ++i) {
    wrong += std::abs(reduced.colours[reduced.pixels[i]][0] - picture.bytes[i * 4]);
  }
  // Sixty-four equal squares would be off by eight on the average.
  EXPECT_LT(wrong / static_cast<double>(reduced.pixels.size()), 10);
  EXPECT_EQ(reduceColours(picture, 1).colours.size(), 1U);
}

TerminalGraphics terminal(GraphicsProtocol protocol, int columns, int rows) {
  return {.protocol = protocol, .columns = columns, .rows = rows, .cell = {10, 20}};
}

TEST(ShownSize, FitsTheTerminalAndIsNeverLarger) {
  const PixelSize screenshot{370, 800};
  const auto kitty = GraphicsProtocol::kitty;
  EXPECT_EQ(shownSize(screenshot, terminal(kitty, 200, 100)), screenshot);
  EXPECT_EQ(shownSize(screenshot, terminal(kitty, 80, 23)), (PixelSize{185, 400}));
  EXPECT_EQ(shownSize(screenshot, terminal(kitty, 10, 100)), (PixelSize{100, 216}));
  EXPECT_EQ(shownSize(screenshot, terminal(kitty, 1, 1)), (PixelSize{9, 20}));
  EXPECT_EQ(shownSize({4, 4}, terminal(kitty, 80, 24)), (PixelSize{4, 4}));
}

TEST(InlineImageOf, IsSmallEnoughInEveryProtocol) {
  const std::string jpeg = encodeJpeg(blocks({100, 200}, 5), 0.7, {});
  EXPECT_EQ(inlineImage(jpeg, terminal(GraphicsProtocol::none, 80, 8)), std::nullopt);
  EXPECT_NE(inlineImage(jpeg, terminal(GraphicsProtocol::kitty, 80, 8))->find("s=50,v=100"),
            std::string::npos);
  EXPECT_NE(inlineImage(jpeg, terminal(GraphicsProtocol::sixel, 80, 8))->find("\"1;1;50;100"),
            std::string::npos);
  EXPECT_EQ(inlineImage(jpeg, terminal(GraphicsProtocol::iterm2, 80, 8)), itermImage(jpeg, 5));
}

TEST(InlineImageOf, RefusesWhatIsNoPicture) {
  for (const auto protocol :
       {GraphicsProtocol::kitty, GraphicsProtocol::iterm2, GraphicsProtocol::sixel}) {
    EXPECT_THROW((void)inlineImage("foo", terminal(protocol, 80, 24)), PictureError);
    EXPECT_THROW((void)inlineImage("", terminal(protocol, 80, 24)), PictureError);
  }
}

}  // namespace
}  // namespace corvane
