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

/// How near the pixels of a picture are to strokes. Of any number of strokes, many of which lie on
/// each other then, each costs little more than looking where it lies.
class Nearness {
 public:
  /// Tells distances below `reach`, but of those up to `covered` only that they are no more.
  Nearness(PictureSize size, double reach, double covered)
      : size(size),
        reach(static_cast<float>(reach)),
        coveredSquare(static_cast<float>(covered * covered)),
        pixels(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height),
               Pixel{this->reach * this->reach}) {}

  void add(const Segment& stroke);

  /// Calls `visit` with every pixel within reach, and how far its middle is from the nearest
  /// stroke.
  template <class Visit>
  void visitNear(Visit visit);

 private:
  struct Pixel {
    /// Of the distance.
    float square;
    /// How many pixels of the row, from this one on, are covered and need no further look: all of
    /// them, or some.
    int covered = 0;
  };
  struct Range {
    int first;
    int end;
  };

  /// The pixels between two places on a side `length` long, and at most one more.
  [[nodiscard]] static Range between(float low, float high, int length) {
    const auto side = static_cast<float>(length);
    return {static_cast<int>(std::clamp(low, 0.0F, side)),
            std::min(static_cast<int>(std::clamp(high, 0.0F, side)) + 1, length)};
  }
  [[nodiscard]] Pixel* row(int y) {
    return pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width);
  }
  /// The first column from `x` on that is not covered.
  [[nodiscard]] int uncovered(Pixel* row, int x);

  PictureSize size;
  float reach;
  float coveredSquare;
  std::vector<Pixel> pixels;
};

int Nearness::uncovered(Pixel* row, int x) {
  while (x < size.width && row[x].covered > 0) {
    const int after = x + row[x].covered;
    // The next walk takes two steps as one.
    if (after < size.width) row[x].covered += row[after].covered;
    x += row[x].covered;
  }
  return x;
}

void Nearness::add(const Segment& stroke) {
  const auto fromX = static_cast<float>(stroke.from.x);
  const auto fromY = static_cast<float>(stroke.from.y);
  const auto dx = static_cast<float>(stroke.to.x - stroke.from.x);
  const auto dy = static_cast<float>(stroke.to.y - stroke.from.y);
  const float squaredLength = dx * dx + dy * dy;
  const float perSquaredLength = squaredLength > 0 ? 1 / squaredLength : 0;
  const Range rows =
      between(fromY + std::min(dy, 0.0F) - reach, fromY + std::max(dy, 0.0F) + reach, size.height);
  for (int y = rows.first; y < rows.end; ++y) {
    const float down = static_cast<float>(y) + 0.5F - fromY;
    // The part of the stroke that comes within reach of the row.
    float one = 0;
    float other = dx;
    if (dy != 0) {
      one = std::clamp((down - 0.5F - reach) / dy, 0.0F, 1.0F) * dx;
      other = std::clamp((down + 0.5F + reach) / dy, 0.0F, 1.0F) * dx;
    }
    const Range columns = between(fromX + std::min(one, other) - reach,
                                  fromX + std::max(one, other) + reach, size.width);
    Pixel* const pixel = row(y);
    for (int x = uncovered(pixel, columns.first); x < columns.end; x = uncovered(pixel, x + 1)) {
      const float right = static_cast<float>(x) + 0.5F - fromX;
      const float along = std::clamp((right * dx + down * dy) * perSquaredLength, 0.0F, 1.0F);
      const float awayX = right - along * dx;
      const float awayY = down - along * dy;
      pixel[x].square = std::min(pixel[x].square, awayX * awayX + awayY * awayY);
      if (pixel[x].square <= coveredSquare) pixel[x].covered = 1;
    }
  }
}

template <class Visit>
void Nearness::visitNear(Visit visit) {
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const float square = row(y)[x].square;
      if (square < reach * reach) visit(x, y, std::sqrt(square));
    }
  }
}

/// Puts as much of `colour` on a pixel as a stroke of `radius` covers of it, `away` pixels from the
/// stroke's middle.
void paint(std::uint8_t* pixel, double away, double radius, const Colour& colour) {
  const double coverage = std::clamp(radius + 0.5 - away, 0.0, 1.0);
  for (std::size_t c = 0; c < colour.size(); ++c) {
    pixel[c] = static_cast<std::uint8_t>(std::lround(pixel[c] + (colour[c] - pixel[c]) * coverage));
  }
}

void addBrackets(Nearness& nearness, Point centre, const Measures& measures) {
  for (const double sideX : {-1.0, 1.0}) {
    for (const double sideY : {-1.0, 1.0}) {
      const Point corner{centre.x + sideX * measures.bracketReach,
                         centre.y + sideY * measures.bracketReach};
      nearness.add({corner, {corner.x - sideX * measures.bracketArm, corner.y}});
      nearness.add({corner, {corner.x, corner.y - sideY * measures.bracketArm}});
    }
  }
}

/// Adds a line and the barbs of the arrowhead at its end.
void addArrow(Nearness& nearness, Point start, Point end, const Measures& measures) {
  nearness.add({start, end});
  const double length = std::hypot(end.x - start.x, end.y - start.y);
  if (length == 0) return;
  const double alongX = (end.x - start.x) / length;
  const double alongY = (end.y - start.y) / length;
  // The barbs stand off the line by 30 degrees.
  const double back = measures.arrowBarb * 0.866;
  for (const double aside : {-measures.arrowBarb / 2, measures.arrowBarb / 2}) {
    nearness.add(
        {end, {end.x - back * alongX - aside * alongY, end.y - back * alongY + aside * alongX}});
  }
}

/// `end`, or a place on the way there that lies well outside a picture of `size` with `start` in
/// it.
Point reachable(Point start, Point end, PictureSize size) {
  const double farthest = 4.0 * (size.width + size.height);
  const double dx = end.x - start.x;
  const double dy = end.y - start.y;
  // The length itself could be beyond a double.
  const double longer = std::max(std::abs(dx), std::abs(dy));
  if (longer <= farthest) return end;
  return {start.x + dx / longer * farthest, start.y + dy / longer * farthest};
}

/// `point` moved by less than the eye sees.
Point onGrid(Point point) {
  constexpr double steps = 4;
  return {std::round(point.x * steps) / steps, std::round(point.y * steps) / steps};
}

/// `marks` but for those that would look like another.
std::vector<TouchMark> distinct(std::span<const TouchMark> marks, PictureSize size) {
  std::vector<TouchMark> kept;
  kept.reserve(marks.size());
  for (const auto& [start, end] : marks) {
    kept.push_back({onGrid(start), std::nullopt});
    if (end) kept.back().end = onGrid(reachable(start, *end, size));
  }
  std::sort(kept.begin(), kept.end());
  kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
  return kept;
}

}  // namespace

void drawTouchMarks(Picture& picture, std::span<const TouchMark> marks) {
  if (marks.empty()) return;
  const Measures measures = measuresFor(picture.size);
  Nearness nearness(picture.size, measures.casingRadius + 0.5, measures.coreRadius - 0.5);
  for (const auto& [start, end] : distinct(marks, picture.size)) {
    addBrackets(nearness, start, measures);
    if (end) addArrow(nearness, start, *end, measures);
  }
  nearness.visitNear([&](int x, int y, double away) {
    paint(picture.at(x, y), away, measures.casingRadius, casingColour);
    paint(picture.at(x, y), away, measures.coreRadius, coreColour);
  });
}

}  // namespace corvane
