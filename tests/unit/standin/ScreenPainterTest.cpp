#include "corvane_standin/capture/ScreenPainter.h"

#include <gtest/gtest.h>

#include "corvane_mcp/trace/PictureFormats.h"
#include "corvane_standin/capture/Gestures.h"
#include "corvane_standin/capture/PngPicture.h"

namespace corvane::standin {
namespace {

using Kind = Element::Kind;
using Part = Target::Part;

Picture decoded(const std::string& png, int largestSide) {
  PictureInput input(std::span(reinterpret_cast<const std::uint8_t*>(png.data()), png.size()));
  return decodePng(input, largestSide).picture;
}

Colour at(const Picture& picture, int x, int y) {
  const std::uint8_t* pixel = picture.at(x, y);
  return {pixel[0], pixel[1], pixel[2]};
}

Screen page(std::vector<Element> elements) {
  Screen screen;
  screen.appName = "Corner Shop";
  screen.title = "Page";
  screen.time = "9:41";
  screen.tabs = {"Shop", "Cart", "Account"};
  screen.elements = std::move(elements);
  return screen;
}

TEST(CanvasTest, FillsCutsAndSmooths) {
  Canvas canvas({10, 10}, 2, white);
  canvas.fill({-5, -5, 10, 10}, rgb(0xFF0000));
  canvas.fillCircle({7, 7}, 2, black);
  const auto picture = decoded(encodePng(canvas), 20);
  EXPECT_EQ(picture.size, (PictureSize{20, 20}));
  EXPECT_EQ(at(picture, 0, 0), rgb(0xFF0000));
  EXPECT_EQ(at(picture, 9, 9), rgb(0xFF0000));
  EXPECT_EQ(at(picture, 10, 0), white);
  EXPECT_EQ(at(picture, 13, 13), black);
  const Colour edge = at(picture, 11, 10);
  EXPECT_TRUE(edge.red > 0 && edge.red < 255) << int{edge.red};
}

TEST(CanvasTest, HasColoursToSpareForAreas) {
  Canvas canvas({300, 10}, 1, white);
  for (int i = 0; i < 40; ++i) {
    canvas.fillCircle({i * 7.3 + 5, 5.2}, 3, rgb(static_cast<std::uint32_t>(i) * 0x010307));
  }
  canvas.fill({0, 0, 5, 5}, rgb(0x12AB34));
  EXPECT_EQ(canvas.palette()[canvas.pixels()[0]], rgb(0x12AB34));
}

TEST(LetteringTest, CutsWhatIsTooLong) {
  Lettering letters(3);
  const Font font{17};
  EXPECT_EQ(letters.cut("Kitchen", font, 200), "Kitchen");
  const auto cut = letters.cut("Everything for the kitchen", font, 100);
  EXPECT_TRUE(cut.ends_with("…")) << cut;
  EXPECT_LE(letters.width(cut, font), 100);
  EXPECT_EQ(letters.cut("ééé", font, 1), "…");
}

TEST(LetteringTest, WrapsAtWords) {
  Lettering letters(3);
  const Font font{17};
  const auto lines = letters.wrapped("one two three", font, letters.width("two three", font));
  EXPECT_EQ(lines, (std::vector<std::string>{"one two", "three"}));
  EXPECT_EQ(letters.wrapped("", font, 10), std::vector<std::string>());
}

TEST(LetteringTest, EveryCharacterHasALetter) {
  Lettering letters(3);
  Canvas canvas({300, 40}, 3, white);
  for (char32_t character = 0x20; character < 0x180; ++character) {
    const std::string text = character < 0x80
                                 ? std::string(1, static_cast<char>(character))
                                 : std::string{static_cast<char>(0xC0 | character >> 6),
                                               static_cast<char>(0x80 | (character & 0x3F))};
    EXPECT_GT(letters.width(text, {17}), 0) << text;
    letters.draw(canvas, {20, 30}, text, {17}, black);
  }
  // Cut off and not UTF-8 either: not ours to complain about.
  letters.draw(canvas, {290, 30}, "\xE2\x82 x\xF0", {17}, black);
}

TEST(ScreenPainterTest, TellsWhereTheTargetIs) {
  ScreenPainter painter;
  auto screen =
      page({{.kind = Kind::row, .label = "First"}, {.kind = Kind::button, .label = "Go"}});
  screen.target = Target{Part::element, 1};
  const auto button = painter.paint(screen).target.value();
  EXPECT_GT(button.y, 0.7);
  EXPECT_LT(button.bottom(), 0.93);
  EXPECT_NEAR(button.centre().x, 0.5, 0.01);
  screen.target = Target{Part::tab, 2};
  EXPECT_GT(painter.paint(screen).target.value().x, 0.6);
  screen.target.reset();
  EXPECT_FALSE(painter.paint(screen).target);
}

TEST(ScreenPainterTest, ATouchedButtonHasItsColour) {
  ScreenPainter painter;
  auto screen = page({{.kind = Kind::button, .label = "Go", .strong = true}});
  screen.target = Target{Part::element, 0};
  const auto painted = painter.paint(screen);
  const auto touch = touchesOf(StepWords("tap", "Tap the button \"Go\""), painted.target).at(0);
  const auto picture = decoded(painted.png, 3000);
  // Beside the letters in its middle.
  const int x = static_cast<int>(touch.x * picture.size.width) + 150;
  const int y = static_cast<int>(touch.y * picture.size.height);
  EXPECT_EQ(at(picture, x, y), lookOf("Corner Shop").accent);
}

TEST(ScreenPainterTest, APageMovesUntilItsTargetIsInSight) {
  ScreenPainter painter;
  std::vector<Element> rows(40, {.kind = Kind::row, .label = "Row"});
  auto screen = page(std::move(rows));
  for (const std::size_t index : {std::size_t{0}, std::size_t{20}, std::size_t{39}}) {
    screen.target = Target{Part::element, index};
    for (const bool scrolled : {false, true}) {
      screen.scrolled = scrolled;
      const auto area = painter.paint(screen).target.value();
      EXPECT_GT(area.y, 0.1) << index;
      EXPECT_LT(area.bottom(), 0.92) << index;
    }
  }
}

TEST(ScreenPainterTest, EveryKindOfElementCanBePainted) {
  ScreenPainter painter;
  for (int kind = 0; kind <= static_cast<int>(Kind::roundButton); ++kind) {
    auto screen = page({{.kind = static_cast<Kind>(kind), .label = std::string(300, 'w')}});
    screen.phone = kind % 3 == 0 ? Screen::Phone::android : Screen::Phone::ios;
    screen.keyboard = kind % 2 == 0;
    screen.target = Target{Part::element, 0};
    EXPECT_TRUE(painter.paint(screen).target) << kind;
  }
}

TEST(GesturesTest, AScrollMovesTheFingerTheOtherWay) {
  const auto down = touchesOf(StepWords("scroll", "Scroll down to the end"), std::nullopt).at(0);
  EXPECT_GT(down.y, down.endY.value());
  const auto up = touchesOf(StepWords("scroll", "Scroll up"), std::nullopt).at(0);
  EXPECT_LT(up.y, up.endY.value());
}

TEST(GesturesTest, ADragFollowsItsWords) {
  const Rect row{0.1, 0.4, 0.8, 0.1};
  const auto left =
      touchesOf(StepWords("drag", "Drag the row \"Mug\" to the left edge"), row).at(0);
  EXPECT_GT(left.x, left.endX.value());
  EXPECT_EQ(left.y, left.endY.value());
  const auto handle =
      touchesOf(StepWords("drag", "Drag the right handle of \"Price\" to the middle"),
                Rect{0.8, 0.4, 0.05, 0.02})
          .at(0);
  EXPECT_EQ(handle.endX, 0.5);
}

TEST(GesturesTest, OnlyGesturesTouch) {
  const Rect area{0.1, 0.1, 0.2, 0.2};
  EXPECT_TRUE(touchesOf(StepWords("visualAssert", "The \"Mug\""), area).empty());
  EXPECT_TRUE(touchesOf(StepWords("input", "text"), area).empty());
  EXPECT_TRUE(touchesOf(StepWords("tap", "Tap \"Mug\""), std::nullopt).empty());
}

}  // namespace
}  // namespace corvane::standin
