#include "corvane_standin/capture/Canvas.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace corvane::standin {

namespace {

constexpr std::size_t mostColours = 256;
/// Edges are drawn in this many steps between not covered and covered.
constexpr std::size_t coverageSteps = 8;

int differenceOf(Colour a, Colour b) {
  return std::max(
      {std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
}

double roundedDistance(Point at, Rect area, double radius) {
  const Point centre = area.centre();
  const Point beyond{std::abs(at.x - centre.x) - area.width / 2 + radius,
                     std::abs(at.y - centre.y) - area.height / 2 + radius};
  const double outside = length({std::max(beyond.x, 0.0), std::max(beyond.y, 0.0)});
  return outside + std::min(std::max(beyond.x, beyond.y), 0.0) - radius;
}

double polygonDistance(Point at, std::span<const Point> corners) {
  double nearest = std::numeric_limits<double>::max();
  bool inside = false;
  for (std::size_t i = 0, last = corners.size() - 1; i < corners.size(); last = i++) {
    const Point a = corners[last];
    const Point b = corners[i];
    nearest = std::min(nearest, distanceToLine(at, a, b));
    const bool crosses = (a.y > at.y) != (b.y > at.y);
    if (crosses && at.x < a.x + (b.x - a.x) * (at.y - a.y) / (b.y - a.y)) inside = !inside;
  }
  return inside ? -nearest : nearest;
}

Rect boundsOf(std::span<const Point> points) {
  const auto [left, right] =
      std::minmax_element(points.begin(), points.end(), [](Point a, Point b) { return a.x < b.x; });
  const auto [top, bottom] =
      std::minmax_element(points.begin(), points.end(), [](Point a, Point b) { return a.y < b.y; });
  return {left->x, top->y, right->x - left->x, bottom->y - top->y};
}

}  // namespace

Canvas::Canvas(Size size, int scale, Colour background)
    : points(size),
      pixelsPerPoint(scale),
      columns(static_cast<int>(std::lround(size.width * scale))),
      rows(static_cast<int>(std::lround(size.height * scale))),
      inks(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)),
      colours{background},
      blends(mostColours * mostColours * coverageSteps) {}

template <class Distance>
void Canvas::fillShape(Rect bounds, Colour colour, Distance distance) {
  const double scale = pixelsPerPoint;
  const int left = std::max(static_cast<int>(std::floor(bounds.x * scale)) - 1, 0);
  const int top = std::max(static_cast<int>(std::floor(bounds.y * scale)) - 1, 0);
  const int right = std::min(static_cast<int>(std::ceil(bounds.right() * scale)) + 1, columns);
  const int bottom = std::min(static_cast<int>(std::ceil(bounds.bottom() * scale)) + 1, rows);
  const std::uint8_t ink = inkFor(colour);
  for (int y = top; y < bottom; ++y) {
    std::uint8_t* row = &inks[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns)];
    // No pixel nearer than the edge can differ from this one, so most of them are not looked at.
    for (int x = left; x < right;) {
      const double edge = distance(Point{(x + 0.5) / scale, (y + 0.5) / scale}) * scale;
      const int alike = std::clamp(static_cast<int>(std::abs(edge) - 0.5), 1, right - x);
      if (edge <= -0.5) {
        std::fill_n(row + x, alike, ink);
      } else if (edge < 0.5) {
        blend(row[x], ink, 0.5 - edge);
        ++x;
        continue;
      }
      x += alike;
    }
  }
}

void Canvas::fillRounded(Rect area, double radius, Colour colour) {
  const double possible = std::min({radius, area.width / 2, area.height / 2});
  fillShape(area, colour, [=](Point at) { return roundedDistance(at, area, possible); });
}

void Canvas::fillCircle(Point centre, double radius, Colour colour) {
  fillRounded({centre.x - radius, centre.y - radius, 2 * radius, 2 * radius}, radius, colour);
}

void Canvas::fillPolygon(std::span<const Point> corners, Colour colour) {
  fillShape(boundsOf(corners), colour, [=](Point at) { return polygonDistance(at, corners); });
}

void Canvas::drawRing(Point centre, double radius, double width, Colour colour) {
  const double outer = radius + width / 2;
  fillShape({centre.x - outer, centre.y - outer, 2 * outer, 2 * outer}, colour,
            [=](Point at) { return std::abs(length(at - centre) - radius) - width / 2; });
}

void Canvas::drawLines(std::span<const Point> path, double width, Colour colour) {
  for (std::size_t i = 1; i < path.size(); ++i) {
    const std::span<const Point> line = path.subspan(i - 1, 2);
    fillShape(boundsOf(line).inset(-width / 2), colour,
              [=](Point at) { return distanceToLine(at, line[0], line[1]) - width / 2; });
  }
}

void Canvas::paintMask(std::span<const std::uint8_t> mask, int width, int left, int top,
                       Colour colour) {
  const std::uint8_t ink = inkFor(colour);
  for (std::size_t i = 0; i < mask.size(); ++i) {
    if (mask[i] == 0) continue;
    const int x = left + static_cast<int>(i) % width;
    const int y = top + static_cast<int>(i) / width;
    if (x < 0 || x >= columns || y < 0 || y >= rows) continue;
    std::uint8_t& pixel = inks[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) +
                               static_cast<std::size_t>(x)];
    blend(pixel, ink, mask[i] / 255.0);
  }
}

void Canvas::cover(Colour colour, double share) {
  for (Colour& each : colours) each = mixed(each, colour, share);
  std::fill(blends.begin(), blends.end(), std::uint8_t{0});
}

std::uint8_t Canvas::inkFor(Colour colour) {
  const auto found = std::find(colours.begin(), colours.end(), colour);
  if (found != colours.end()) return static_cast<std::uint8_t>(found - colours.begin());
  if (colours.size() == mostColours) return similarInk(colour);
  colours.push_back(colour);
  return static_cast<std::uint8_t>(colours.size() - 1);
}

std::uint8_t Canvas::similarInk(Colour colour) {
  constexpr int nearEnough = 6;
  // Edges may be a little off, areas may not.
  constexpr std::size_t reserved = 64;
  const auto nearest = std::min_element(colours.begin(), colours.end(), [&](Colour a, Colour b) {
    return differenceOf(a, colour) < differenceOf(b, colour);
  });
  if (differenceOf(*nearest, colour) > nearEnough && colours.size() < mostColours - reserved) {
    return inkFor(colour);
  }
  return static_cast<std::uint8_t>(nearest - colours.begin());
}

void Canvas::blend(std::uint8_t& pixel, std::uint8_t ink, double coverage) {
  const auto step = static_cast<std::size_t>(std::lround(coverage * coverageSteps));
  if (step == 0 || pixel == ink) return;
  if (step == coverageSteps) {
    pixel = ink;
    return;
  }
  std::uint8_t& known = blends[(std::size_t{pixel} * mostColours + ink) * coverageSteps + step];
  if (known == 0) {
    known =
        similarInk(mixed(colours[pixel], colours[ink], static_cast<double>(step) / coverageSteps));
  }
  pixel = known;
}

}  // namespace corvane::standin
