#pragma once

#include <algorithm>
#include <cmath>

namespace corvane::standin {

/// A place on a screen, in points from its upper left corner.
struct Point {
  double x = 0;
  double y = 0;

  friend Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
  friend Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
  friend Point operator*(Point a, double factor) { return {a.x * factor, a.y * factor}; }
  friend bool operator==(Point, Point) = default;
};

[[nodiscard]] inline double length(Point vector) {
  return std::sqrt(vector.x * vector.x + vector.y * vector.y);
}

struct Size {
  double width = 0;
  double height = 0;
};

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  [[nodiscard]] double right() const { return x + width; }
  [[nodiscard]] double bottom() const { return y + height; }
  [[nodiscard]] Point centre() const { return {x + width / 2, y + height / 2}; }
  [[nodiscard]] Rect inset(double by) const { return inset(by, by); }
  [[nodiscard]] Rect inset(double horizontally, double vertically) const {
    return {x + horizontally, y + vertically, width - 2 * horizontally, height - 2 * vertically};
  }
  [[nodiscard]] Rect moved(double right, double down) const {
    return {x + right, y + down, width, height};
  }

  friend bool operator==(Rect, Rect) = default;
};

/// How far `at` is from the line between `a` and `b`.
[[nodiscard]] inline double distanceToLine(Point at, Point a, Point b) {
  const Point along = b - a;
  const Point from = at - a;
  const double squared = along.x * along.x + along.y * along.y;
  const double share =
      squared > 0 ? std::clamp((from.x * along.x + from.y * along.y) / squared, 0.0, 1.0) : 0.0;
  return length(from - along * share);
}

}  // namespace corvane::standin
