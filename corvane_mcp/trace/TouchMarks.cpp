#include "corvane_mcp/trace/TouchMarks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace corvane {

namespace {

using Colour = std::array<std::uint8_t, 3>;

/// A bright core in a dark casing: whatever the screen shows, one of the two stands out from it.
constexpr Colour coreColour{255, 228, 0};
constexpr Colour casingColour{0, 0, 0};

struct Segment {
  Point from;
  Point to;
};

/// The measures of the marks, in pixels.
struct Measures {
  /// From the touched point to the sides of the square that the brackets span.
  double bracketReach;
  double bracketArm;
  double arrowBarb;
  double coreRadius;
  double casingRadius;
};

/// In proportion to the picture, but never so small that a mark turns into a blot.
Measures measuresFor(PictureSize size) {
  const double longer = std::max(size.width, size.height);
  const double coreRadius = std::max(longer * 0.003, 0.75);
  return {.bracketReach = std::max(longer * 0.034, 5.0),
          .bracketArm = std::max(longer * 0.018, 2.5),
          .arrowBarb = std::max(longer * 0.035, 4.5),
          .coreRadius = coreRadius,
          .casingRadius = coreRadius * 2};
}

/// Paints thick round-ended lines with smooth edges onto a picture.
class Painter {
 public:
  explicit Painter(Picture& picture) : picture(picture) {}

  void paint(const std::vector<Segment>& strokes, double radius, const Colour& colour) {
    for (const auto& stroke : strokes) paint(stroke, radius, colour);
  }

 private:
  void paint(const Segment& stroke, double radius, const Colour& colour);
  void blend(int x, int y, double coverage, const Colour& colour);

  Picture& picture;
};

double distance(Point point, const Segment& segment) {
  const double dx = segment.to.x - segment.from.x;
  const double dy = segment.to.y - segment.from.y;
  const double squaredLength = dx * dx + dy * dy;
  const double along = (point.x - segment.from.x) * dx + (point.y - segment.from.y) * dy;
  const double t = squaredLength > 0 ? std::clamp(along / squaredLength, 0.0, 1.0) : 0.0;
  return std::hypot(point.x - segment.from.x - t * dx, point.y - segment.from.y - t * dy);
}

/// The pixels between two places on a side `length` long.
struct PixelRange {
  PixelRange(double low, double high, int length)
      : first(static_cast<int>(std::clamp(std::floor(low), 0.0, static_cast<double>(length)))),
        end(static_cast<int>(std::clamp(std::ceil(high), 0.0, static_cast<double>(length)))) {}

  int first;
  int end;
};

/// The pixels of row `y` that a stroke can touch, and few others.
PixelRange columnsOf(const Segment& stroke, int y, double reach, int width) {
  const double dx = stroke.to.x - stroke.from.x;
  const double dy = stroke.to.y - stroke.from.y;
  double firstPart = 0;
  double lastPart = 1;
  if (dy != 0) {
    const double one = (y - reach - stroke.from.y) / dy;
    const double other = (y + 1 + reach - stroke.from.y) / dy;
    firstPart = std::clamp(std::min(one, other), 0.0, 1.0);
    lastPart = std::clamp(std::max(one, other), 0.0, 1.0);
  }
  const auto [low, high] =
      std::minmax({stroke.from.x + firstPart * dx, stroke.from.x + lastPart * dx});
  return {low - reach, high + reach, width};
}

void Painter::paint(const Segment& stroke, double radius, const Colour& colour) {
  const double reach = radius + 0.5;
  const auto [low, high] = std::minmax({stroke.from.y, stroke.to.y});
  const PixelRange rows(low - reach, high + reach, picture.size.height);
  for (int y = rows.first; y < rows.end; ++y) {
    const PixelRange columns = columnsOf(stroke, y, reach, picture.size.width);
    for (int x = columns.first; x < columns.end; ++x) {
      const double away = distance({x + 0.5, y + 0.5}, stroke);
      if (away < reach) blend(x, y, std::min(reach - away, 1.0), colour);
    }
  }
}

void Painter::blend(int x, int y, double coverage, const Colour& colour) {
  std::uint8_t* pixel = picture.at(x, y);
  for (std::size_t c = 0; c < colour.size(); ++c) {
    const double mixed = pixel[c] + (colour[c] - pixel[c]) * coverage;
    pixel[c] = static_cast<std::uint8_t>(std::lround(mixed));
  }
}

void addBrackets(std::vector<Segment>& strokes, Point centre, const Measures& measures) {
  for (const double sideX : {-1.0, 1.0}) {
    for (const double sideY : {-1.0, 1.0}) {
      const Point corner{centre.x + sideX * measures.bracketReach,
                         centre.y + sideY * measures.bracketReach};
      strokes.push_back({corner, {corner.x - sideX * measures.bracketArm, corner.y}});
      strokes.push_back({corner, {corner.x, corner.y - sideY * measures.bracketArm}});
    }
  }
}

/// Adds a line and the barbs of the arrowhead at its end.
void addArrow(std::vector<Segment>& strokes, Point start, Point end, const Measures& measures) {
  strokes.push_back({start, end});
  const double length = std::hypot(end.x - start.x, end.y - start.y);
  if (length == 0) return;
  const double alongX = (end.x - start.x) / length;
  const double alongY = (end.y - start.y) / length;
  // The barbs stand off the line by 30 degrees.
  const double back = measures.arrowBarb * 0.866;
  for (const double aside : {-measures.arrowBarb / 2, measures.arrowBarb / 2}) {
    strokes.push_back(
        {end, {end.x - back * alongX - aside * alongY, end.y - back * alongY + aside * alongX}});
  }
}

/// `end`, or a place on the way there that lies well outside a picture of `size` with `start` in
/// it.
Point reachable(Point start, Point end, PictureSize size) {
  const double farthest = 4.0 * (size.width + size.height);
  const double length = std::hypot(end.x - start.x, end.y - start.y);
  if (length <= farthest) return end;
  return {start.x + (end.x - start.x) / length * farthest,
          start.y + (end.y - start.y) / length * farthest};
}

}  // namespace

void drawTouchMarks(Picture& picture, std::span<const TouchMark> marks) {
  const Measures measures = measuresFor(picture.size);
  std::vector<Segment> strokes;
  for (const auto& mark : marks) {
    addBrackets(strokes, mark.start, measures);
    if (mark.end) {
      addArrow(strokes, mark.start, reachable(mark.start, *mark.end, picture.size), measures);
    }
  }
  Painter painter(picture);
  painter.paint(strokes, measures.casingRadius, casingColour);
  painter.paint(strokes, measures.coreRadius, coreColour);
}

}  // namespace corvane
