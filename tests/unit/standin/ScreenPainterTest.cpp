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
  Canvas canvas({10, 10}, white);
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
  Canvas canvas({300, 10}, white);
  for (int i = 0; i < 40; ++i) {
    canvas.circle({i * 7.3 + 5, 5.2}, 3, static_cast<Colour>(i) * 0x010307);
  }
  canvas.fill({0, 0, 5, 5}, 0x12AB34);
  EXPECT_EQ(at(decoded(canvas.png(), 900), 7, 7), 0x12AB34U);
}

TEST(CanvasTest, DrawsWhatASketchSays) {
  Canvas canvas({20, 20}, white);
  canvas.sketch({10, 10}, 10, "R -1 -1 1 1 0 #0000FF C .5 .5 .3 #00FF00 L .2 -1 .5 0 .5", red);
  const auto picture = decoded(canvas.png(), 60);
  EXPECT_EQ(at(picture, 15, 15), red);
  EXPECT_EQ(at(picture, 45, 15), white);
  EXPECT_EQ(at(picture, 45, 45), 0x0000FFU);
  EXPECT_EQ(at(picture, 15, 45), 0x00FF00U);
  EXPECT_THROW(canvas.sketch({0, 0}, 1, "X 1 2"), std::logic_error);
  EXPECT_THROW(canvas.sketch({0, 0}, 1, "C 1 2"), std::logic_error);
}

TEST(CanvasTest, CutsTextsThatAreTooLong) {
  const Canvas canvas({10, 10}, white);
  const Font font{17};
  EXPECT_EQ(canvas.cut("Kitchen", font, 200), "Kitchen");
  const auto cut = canvas.cut("Everything for the kitchen", font, 100);
  EXPECT_TRUE(cut.ends_with("…")) << cut;
  EXPECT_LE(canvas.width(cut, font), 100);
  EXPECT_EQ(canvas.cut("ééé", font, 1), "…");
}

TEST(CanvasTest, TextsStayInTheirArea) {
  for (const auto align : {Canvas::Align::left, Canvas::Align::centre, Canvas::Align::right}) {
    Canvas canvas({200, 40}, white);
    canvas.write({50, 0, 100, 40}, "Everything for the kitchen", {17}, black, align);
    const auto picture = decoded(canvas.png(), 600);
    bool isWritten = false;
    for (int y = 0; y < 120; ++y) {
      for (int x = 0; x < 600; ++x) {
        const bool isInside = x >= 150 && x < 450;
        isWritten |= isInside && at(picture, x, y) == black;
        ASSERT_TRUE(isInside || at(picture, x, y) == white) << x << " " << y;
      }
    }
    EXPECT_TRUE(isWritten);
  }
}

TEST(CanvasTest, WrapsAtWords) {
  const Canvas canvas({10, 10}, white);
  const Font font{17};
  const auto lines = canvas.wrapped("one two three", font, canvas.width("two three", font));
  EXPECT_EQ(lines, (std::vector<std::string>{"one two", "three"}));
  EXPECT_EQ(canvas.wrapped("", font, 10), std::vector<std::string>());
}

TEST(CanvasTest, LinesThatDoNotFitAreLeftOut) {
  Canvas canvas({200, 100}, white);
  const std::string text(300, 'w');
  const Rect area{0, 20, 200, 48};
  EXPECT_EQ(canvas.writeLines(area, 24, "short", {17}, black, Canvas::Align::left), 44);
  EXPECT_EQ(canvas.writeLines(area, 24, "a b c d " + text + " " + text + " " + text, {17}, black,
                              Canvas::Align::left),
            68);
}

TEST(CanvasTest, EveryCharacterHasALetter) {
  Canvas canvas({300, 40}, white);
  for (char32_t character = 0x20; character < 0x180; ++character) {
    std::string text;
    appendUtf8(text, character);
    EXPECT_GT(canvas.width(text, {17}), 0) << text;
    canvas.write({20, 0, 280, 40}, text, {17}, black);
  }
  // Cut off and not UTF-8 either: not ours to complain about.
  canvas.write({20, 0, 280, 40}, "\xE2\x82 x\xF0", {17}, black);
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
    screen.phone = kind % 3 == 0 ? Screen::Phone::android : Screen::Phone::ios;
    if (static_cast<Kind>(kind) >= Kind::dialog) screen.elements.push_back({.kind = Kind::dialog});
    const bool hasKeyboard = kind % 2 == 0 && static_cast<Kind>(kind) != Kind::tab;
    screen.elements.push_back({.kind = Kind::field, .label = "Name", .strong = hasKeyboard});
    screen.target = 0;
    EXPECT_TRUE(paint(screen).target) << kind;
  }
}

TEST(ScreenPainterTest, TheSameScreenIsTheSamePicture) {
  auto screen = page({{Kind::card, "Enamel mug", "14.00"}, {Kind::map, "Recording", "0:05"}});
  const auto first = paint(screen);
  EXPECT_EQ(paint(screen).png, first.png);
  screen.time = "9:42";
  EXPECT_NE(paint(screen).png, first.png);
}

}  // namespace
}  // namespace corvane::testing
