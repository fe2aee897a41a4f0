#include "corvane_standin/capture/LetterStrokes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <string_view>

#include "corvane_standin/capture/Glyphs.h"

namespace corvane::standin {

namespace {

/// Follows the commands of a letter.
class StrokeReader {
 public:
  explicit StrokeReader(std::string_view commands) : rest(commands) {}

  [[nodiscard]] std::vector<Stroke> read() {
    while (!rest.empty()) {
      const char command = rest.front();
      rest.remove_prefix(1);
      obey(command);
    }
    end();
    return std::move(strokes);
  }

 private:
  void obey(char command) {
    if (command == 'M' || command == 'L') {
      open.push_back(point());
    } else if (command == 'Q') {
      const Point control = point();
      curve(control, point());
    } else if (command == 'A' || command == 'O') {
      const Point centre = point();
      const Point radii = point();
      const Point angles = command == 'A' ? point() : Point{0, 360};
      arc(centre, radii, angles);
    } else if (command == ';') {
      end();
    }
  }

  double number() {
    while (rest.starts_with(' ')) rest.remove_prefix(1);
    double value = 0;
    const auto [after, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    rest.remove_prefix(static_cast<std::size_t>(after - rest.data()));
    return value;
  }
  Point point() {
    const double x = number();
    return {x, number()};
  }

  void curve(Point control, Point to) {
    const Point from = open.back();
    constexpr int parts = 6;
    for (int i = 1; i <= parts; ++i) {
      const double t = static_cast<double>(i) / parts;
      open.push_back(from * ((1 - t) * (1 - t)) + control * (2 * t * (1 - t)) + to * (t * t));
    }
  }

  void arc(Point centre, Point radii, Point angles) {
    constexpr double degreesOfPart = 15;
    const int parts = static_cast<int>(std::ceil(std::abs(angles.y - angles.x) / degreesOfPart));
    for (int i = 0; i <= parts; ++i) {
      const double degrees = angles.x + (angles.y - angles.x) * i / parts;
      const double angle = degrees * std::numbers::pi / 180;
      open.push_back({centre.x + radii.x * std::cos(angle), centre.y + radii.y * std::sin(angle)});
    }
  }

  void end() {
    if (!open.empty()) strokes.push_back(std::move(open));
    open.clear();
  }

  std::string_view rest;
  Stroke open;
  std::vector<Stroke> strokes;
};

void move(std::vector<Stroke>& strokes, Point by) {
  for (auto& stroke : strokes) {
    for (auto& point : stroke) point = point + by;
  }
}

}  // namespace

std::vector<Stroke> strokesOf(char32_t character) {
  const auto [letter, mark] = composedLetter(character);
  auto strokes = StrokeReader(glyphStrokes(letter)).read();
  const Rect reach = extentOf(strokes);
  move(strokes, {-reach.x, 0});
  if (mark == 0) return strokes;
  auto markStrokes = StrokeReader(glyphStrokes(mark)).read();
  constexpr double riseOverCapital = 4;
  const bool isCapital = letter >= U'A' && letter <= U'Z';
  move(markStrokes,
       {reach.width / 2 - extentOf(markStrokes).centre().x, isCapital ? riseOverCapital : 0});
  strokes.insert(strokes.end(), markStrokes.begin(), markStrokes.end());
  return strokes;
}

Rect extentOf(const std::vector<Stroke>& strokes) {
  Point least = strokes.front().front();
  Point most = least;
  for (const auto& stroke : strokes) {
    for (const Point point : stroke) {
      least = {std::min(least.x, point.x), std::min(least.y, point.y)};
      most = {std::max(most.x, point.x), std::max(most.y, point.y)};
    }
  }
  return {least.x, least.y, most.x - least.x, most.y - least.y};
}

}  // namespace corvane::standin
