#include <gtest/gtest.h>

#include <stdexcept>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/trace/PictureFormats.h"
#include "corvane_standin/capture/Canvas.h"
#include "corvane_standin/capture/ScreenPainter.h"
#include "corvane_standin/capture/ScreenStory.h"

namespace corvane::testing {

using namespace standin;

namespace {

using Kind = Element::Kind;

using palette::black;
using palette::white;
constexpr Colour red = 0xFF0000;

Picture decoded(const std::string& png, int largestSide) {
  PictureInput input(std::span(reinterpret_cast<const std::uint8_t*>(png.data()), png.size()));
  return decodePng(input, largestSide).picture;
}

Colour at(const Picture& picture, int x, int y) {
  const std::uint8_t* pixel = picture.at(x, y);
  return Colour{pixel[0]} << 16 | Colour{pixel[1]} << 8 | Colour{pixel[2]};
}

Screen page(std::vector<Element> elements) {
  Screen screen;
  screen.appName = "Corner Shop";
  screen.title = "Page";
  screen.time = "9:41";
  screen.elements = std::move(elements);
  for (const char* tab : {"Shop", "Cart", "Account"}) screen.elements.push_back({Kind::tab, tab});
  return screen;
}

TEST(CanvasTest, FillsCutsAndSmooths) {
  Canvas canvas(10, 10, white);
  canvas.fill({-5, -5, 10, 10}, red);
  canvas.circle({7, 7}, 2, black);
  const auto picture = decoded(canvas.png(), 30);
  EXPECT_EQ(picture.size, (PictureSize{30, 30}));
  EXPECT_EQ(at(picture, 0, 0), red);
  EXPECT_EQ(at(picture, 14, 14), red);
  EXPECT_EQ(at(picture, 15, 0), white);
  EXPECT_EQ(at(picture, 20, 20), black);
  int between = 0;
  for (int x = 15; x < 30; ++x) {
    const Colour colour = at(picture, x, 20);
    if (colour != white && colour != black) ++between;
  }
  EXPECT_EQ(between, 2) << "on either edge of the circle";
}

TEST(CanvasTest, AreasHaveTheirColourAmongMany) {
  Canvas canvas(300, 10, white);
  for (int i = 0; i < 40; ++i) {
    canvas.circle({i * 7.3 + 5, 5.2}, 3, static_cast<Colour>(i) * 0x010307);
  }
  canvas.fill({0, 0, 5, 5}, 0x12AB34);
  EXPECT_EQ(at(decoded(canvas.png(), 900), 7, 7), 0x12AB34U);
}

TEST(CanvasTest, DrawsWhatASketchSays) {
  Canvas canvas(20, 20, white);
  canvas.sketch({10, 10}, 10, "R -1 -1 1 1 0 #0000FF C .5 .5 .3 #00FF00 L .2 -1 .5 0 .5", red);
  const auto picture = decoded(canvas.png(), 60);
  EXPECT_EQ(at(picture, 15, 15), red);
  EXPECT_EQ(at(picture, 45, 15), white);
  EXPECT_EQ(at(picture, 45, 45), 0x0000FFU);
  EXPECT_EQ(at(picture, 15, 45), 0x00FF00U);
  EXPECT_THROW(canvas.sketch({0, 0}, 1, "X 1 2"), std::logic_error);
  EXPECT_THROW(canvas.sketch({0, 0}, 1, "C 1 2"), std::logic_error);
  EXPECT_THROW(canvas.sketch({0, 0}, 1, "L 1 2 3 4"), std::logic_error);
}

/// The columns of a picture, in points, between which it is not white.
std::pair<int, int> writtenBetween(const Picture& picture) {
  std::pair<int, int> found{picture.size.width, 0};
  for (int y = 0; y < picture.size.height; ++y) {
    for (int x = 0; x < picture.size.width; ++x) {
      if (at(picture, x, y) == white) continue;
      found = {std::min(found.first, x), std::max(found.second, x)};
    }
  }
  return {found.first / Canvas::scale, found.second / Canvas::scale};
}

// Fails when the width of the layout, its ellipsis or its alignment is left away.
TEST(CanvasTest, TextsStayInTheirAreaAndAtTheirSide) {
  using enum TextStyle::Align;
  for (const auto align : {left, centre, right}) {
    Canvas canvas(200, 40, white);
    const double width = canvas.write({50, 0, 100, 40}, "Mug", {17, black, align}).x;
    const auto [first, last] = writtenBetween(decoded(canvas.png(), 600));
    EXPECT_NEAR(last - first, width, 4);
    const double middle = align == left ? 50 + width / 2 : align == right ? 150 - width / 2 : 100;
    EXPECT_NEAR((first + last) / 2.0, middle, 3);

    Canvas crowded(200, 40, white);
    crowded.write({50, 0, 100, 40}, "Everything for the kitchen", {17, black, align});
    const auto [start, end] = writtenBetween(decoded(crowded.png(), 600));
    EXPECT_GE(start, 50);
    EXPECT_GT(end, 120) << "as much as fits is written";
    EXPECT_LT(end, 150);
  }
}

TEST(CanvasTest, TextsBreakIntoAsManyLinesAsTheyMayHave) {
  Canvas canvas(300, 200, white);
  const auto heightOf = [&canvas](const char* text, int lines) {
    return canvas.write({0, 0, 120, 0}, text, {17, black, TextStyle::Align::left, false, lines}).y;
  };
  const double one = heightOf("one", 1);
  EXPECT_EQ(heightOf("Everything for the kitchen", 1), one);
  EXPECT_EQ(heightOf("one", 3), one);
  EXPECT_GT(heightOf("Everything for the kitchen", 3), 2 * one);
  EXPECT_LT(heightOf("Everything for the kitchen and the garden and the bath", 3), 4 * one);
  EXPECT_EQ(heightOf("Line\nfeeds\nstay\nin", 1), one);
}

TEST(CanvasTest, EveryCharacterHasALetter) {
  Canvas canvas(300, 40, white);
  for (char32_t character = 0x21; character < 0x180; ++character) {
    if ((character >= 0x7F && character <= 0xA0) || character == 0xAD) continue;
    std::string text;
    appendUtf8(text, character);
    EXPECT_GT(canvas.write({20, 0, 280, 40}, text, {}).x, 0) << text;
  }
  // Cut off and not UTF-8 either: not ours to complain about.
  EXPECT_GT(canvas.write({20, 0, 280, 40}, "\xE2\x82 x\xF0", {}).x, 0);
  EXPECT_NO_THROW((void)canvas.png());
}

TEST(ScreenPainterTest, TellsWhereTheTargetIs) {
  auto screen =
      page({{.kind = Kind::row, .label = "First"}, {.kind = Kind::button, .label = "Go"}});
  screen.target = 1;
  const auto button = paint(screen).target.value();
  EXPECT_GT(button.y, 0.7);
  EXPECT_LT(button.bottom(), 0.93);
  EXPECT_NEAR(button.centre().x, 0.5, 0.01);
  screen.target = 4;
  EXPECT_GT(paint(screen).target.value().x, 0.6);
  screen.target.reset();
  EXPECT_FALSE(paint(screen).target);
}

TEST(ScreenPainterTest, ATouchedButtonHasItsColour) {
  auto screen = page({{.kind = Kind::button, .label = "Go", .strong = true}});
  screen.target = 0;
  const auto painted = paint(screen);
  const auto touch = touchesOf(StepWords("tap", "Tap the button \"Go\""), painted.target).at(0);
  const auto picture = decoded(painted.png, 3000);
  // Beside the letters in its middle.
  const int x = static_cast<int>(touch.x * picture.size.width) + 150;
  const int y = static_cast<int>(touch.y * picture.size.height);
  EXPECT_EQ(at(picture, x, y), accentOf("Corner Shop"));
}

TEST(ScreenPainterTest, APageMovesUntilItsTargetIsInSight) {
  std::vector<Element> rows(40, {.kind = Kind::row, .label = "Row"});
  auto screen = page(std::move(rows));
  for (const std::size_t index : {std::size_t{0}, std::size_t{20}, std::size_t{39}}) {
    screen.target = index;
    for (const bool scrolled : {false, true}) {
      screen.scrolled = scrolled;
      const auto area = paint(screen).target.value();
      EXPECT_GT(area.y, 0.1) << index;
      EXPECT_LT(area.bottom(), 0.92) << index;
    }
  }
}

TEST(ScreenPainterTest, EveryKindOfElementCanBePainted) {
  for (int kind = 0; kind <= static_cast<int>(Kind::appIcon); ++kind) {
    auto screen = page({{.kind = static_cast<Kind>(kind), .label = std::string(300, 'w')}});
    screen.isAndroid = kind % 3 == 0;
    if (static_cast<Kind>(kind) >= Kind::dialog) screen.elements.push_back({.kind = Kind::dialog});
    const bool hasKeyboard = kind % 2 == 0 && static_cast<Kind>(kind) != Kind::tab;
    screen.elements.push_back({.kind = Kind::field, .label = "Name", .strong = hasKeyboard});
    screen.target = 0;
    EXPECT_TRUE(paint(screen).target) << kind;
  }
}

TEST(ScreenPainterTest, TheSameScreenIsTheSamePicture) {
  auto screen = page({{Kind::card, "Enamel mug", "14.00"}, {Kind::picture, "Recording", "0:05"}});
  const auto first = paint(screen);
  EXPECT_EQ(paint(screen).png, first.png);
  screen.time = "9:42";
  EXPECT_NE(paint(screen).png, first.png);
}

}  // namespace
}  // namespace corvane::testing
