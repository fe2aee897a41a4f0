#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "corvane_standin/capture/Colour.h"
#include "corvane_standin/capture/Geometry.h"

namespace corvane::standin {

/// A picture that is drawn on. It holds at most 256 colours, a byte for each pixel: that makes it
/// quick to fill and quick to write. Edges are smooth; what reaches out of the picture is cut.
class Canvas {
 public:
  /// `size` is in points, each `scale` pixels long.
  Canvas(Size size, int scale, Colour background);

  void fill(Rect area, Colour colour) { fillRounded(area, 0, colour); }
  void fillRounded(Rect area, double radius, Colour colour);
  void fillCircle(Point centre, double radius, Colour colour);
  /// The inside of a closed shape with straight edges.
  void fillPolygon(std::span<const Point> corners, Colour colour);
  void drawRing(Point centre, double radius, double width, Colour colour);
  /// Lines from point to point, with round ends and joints.
  void drawLines(std::span<const Point> points, double width, Colour colour);
  /// Paints where `mask`, a row of `width` pixels after the other, says how much: 0 to 255. Its
  /// upper left pixel comes to the pixel `left`, `top`.
  void paintMask(std::span<const std::uint8_t> mask, int width, int left, int top, Colour colour);
  /// Lays `colour` over all there is, covering the given share of it.
  void cover(Colour colour, double share);

  [[nodiscard]] Size size() const { return {points.width, points.height}; }
  [[nodiscard]] int scale() const { return pixelsPerPoint; }
  [[nodiscard]] int width() const { return columns; }
  [[nodiscard]] int height() const { return rows; }
  /// The pixels, row by row from the top, as places in the palette.
  [[nodiscard]] std::span<const std::uint8_t> pixels() const { return inks; }
  [[nodiscard]] std::span<const Colour> palette() const { return colours; }

 private:
  /// Fills where `distance`, from a point to the edge of a shape, is negative. It may underrate
  /// distances but never overrate them.
  template <class Distance>
  void fillShape(Rect bounds, Colour colour, Distance distance);
  [[nodiscard]] std::uint8_t inkFor(Colour colour);
  /// The ink nearest to `colour`, a new one when none is very near and there is room to spare.
  [[nodiscard]] std::uint8_t similarInk(Colour colour);
  void blend(std::uint8_t& pixel, std::uint8_t ink, double coverage);

  Size points;
  int pixelsPerPoint;
  int columns;
  int rows;
  std::vector<std::uint8_t> inks;
  std::vector<Colour> colours;
  /// By ink below, ink above and coverage, the ink that comes of it; 0 while it is not known.
  std::vector<std::uint8_t> blends;
};

}  // namespace corvane::standin
