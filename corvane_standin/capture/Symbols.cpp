#include "corvane_standin/capture/Symbols.h"

#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

constexpr double lineWidth = 2;

/// The upper half of a circle.
std::vector<Point> arch(Point centre, double radius) {
  constexpr int parts = 12;
  std::vector<Point> points;
  for (int i = 0; i <= parts; ++i) {
    const double angle = std::numbers::pi * i / parts;
    points.push_back({centre.x - radius * std::cos(angle), centre.y - radius * std::sin(angle)});
  }
  return points;
}

void drawHouse(Canvas& canvas, Point at, Colour colour) {
  const std::array roof{at + Point{-11, 0}, at + Point{0, -10}, at + Point{11, 0}};
  const std::array walls{at + Point{-8, -2}, at + Point{-8, 10}, at + Point{8, 10},
                         at + Point{8, -2}};
  canvas.drawLines(roof, lineWidth, colour);
  canvas.drawLines(walls, lineWidth, colour);
}

void drawBag(Canvas& canvas, Point at, Colour colour) {
  const std::array body{at + Point{-9, -4}, at + Point{9, -4}, at + Point{8, 10},
                        at + Point{-8, 10}, at + Point{-9, -4}};
  canvas.drawLines(body, lineWidth, colour);
  canvas.drawLines(arch(at + Point{0, -4}, 5), lineWidth, colour);
}

void drawPerson(Canvas& canvas, Point at, Colour colour) {
  canvas.drawRing(at + Point{0, -5}, 5, lineWidth, colour);
  canvas.drawLines(arch(at + Point{0, 10}, 9), lineWidth, colour);
}

void drawControls(Canvas& canvas, Point at, Colour colour) {
  constexpr std::array knobs{-4.0, 5.0, -1.0};
  for (std::size_t i = 0; i < knobs.size(); ++i) {
    const double y = at.y - 7 + 7 * static_cast<double>(i);
    canvas.drawLines(std::array{Point{at.x - 10, y}, Point{at.x + 10, y}}, lineWidth, colour);
    canvas.fillCircle({at.x + knobs[i], y}, 3.2, colour);
  }
}

void drawPin(Canvas& canvas, Point at, Colour colour) {
  canvas.drawRing(at + Point{0, -3}, 7.5, lineWidth, colour);
  canvas.drawLines(std::array{at + Point{-5, 2.6}, at + Point{0, 10}, at + Point{5, 2.6}},
                   lineWidth, colour);
  canvas.fillCircle(at + Point{0, -3}, 2.4, colour);
}

void drawList(Canvas& canvas, Point at, Colour colour) {
  for (const double y : {at.y - 7, at.y, at.y + 7}) {
    canvas.fillCircle({at.x - 9, y}, 1.6, colour);
    canvas.drawLines(std::array{Point{at.x - 4, y}, Point{at.x + 10, y}}, lineWidth, colour);
  }
}

}  // namespace

void drawMagnifier(Canvas& canvas, Point centre, Colour colour) {
  canvas.drawRing(centre + Point{-2, -2}, 7, lineWidth, colour);
  canvas.drawLines(std::array{centre + Point{3.2, 3.2}, centre + Point{9, 9}}, lineWidth, colour);
}

void drawTick(Canvas& canvas, Point centre, double size, double width, Colour colour) {
  canvas.drawLines(std::array{centre + Point{-0.5, 0.05} * size, centre + Point{-0.12, 0.42} * size,
                              centre + Point{0.5, -0.38} * size},
                   width, colour);
}

void drawChevron(Canvas& canvas, Point tip, bool left, Colour colour) {
  const double back = left ? 7 : -7;
  canvas.drawLines(std::array{tip + Point{back, -7}, tip, tip + Point{back, 7}}, lineWidth, colour);
}

void drawTabSymbol(Canvas& canvas, Point centre, std::string_view tab, Colour colour) {
  const std::string name = asciiLowercase(tab);
  const auto speaksOf = [&name](std::initializer_list<std::string_view> words) {
    for (const auto word : words) {
      if (name.find(word) != std::string::npos) return true;
    }
    return false;
  };
  if (speaksOf({"cart", "basket", "bag"})) {
    drawBag(canvas, centre, colour);
  } else if (speaksOf({"shop", "home", "start"})) {
    drawHouse(canvas, centre, colour);
  } else if (speaksOf({"account", "profile", "me", "you"})) {
    drawPerson(canvas, centre, colour);
  } else if (speaksOf({"setting", "option", "filter"})) {
    drawControls(canvas, centre, colour);
  } else if (speaksOf({"map", "route", "near"})) {
    drawPin(canvas, centre, colour);
  } else if (speaksOf({"search", "find"})) {
    drawMagnifier(canvas, centre, colour);
  } else {
    drawList(canvas, centre, colour);
  }
}

}  // namespace corvane::standin
