#pragma once

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// 0xRRGGBB.
using Colour = std::uint32_t;

/// The colours that all apps share.
namespace palette {

inline constexpr Colour white = 0xFFFFFF;
inline constexpr Colour black = 0x000000;
inline constexpr Colour ground = 0xF5F4F0;
inline constexpr Colour bar = 0xFBFAF8;
inline constexpr Colour ink = 0x1C1D1F;
inline constexpr Colour quiet = 0x6E6F75;
inline constexpr Colour hairline = 0xE0DED8;
inline constexpr Colour disabled = 0xC9C8C4;
inline constexpr Colour danger = 0xC8352B;

}  // namespace palette

struct TextStyle {
  /// In the order in which Pango has them.
  enum class Align { left, centre, right };

  double size = 17;
  Colour colour = palette::ink;
  Align align = Align::left;
  bool bold = false;
  /// More than one are written from the top of their area on, one is written in its middle.
  int lines = 1;
};

/// A picture that is drawn on in points, each three pixels long.
class Canvas {
 public:
  static constexpr int scale = 3;

  Canvas(double width, double height, Colour ground);

  /// With corners rounded by `radius`, covering the given share of what is there.
  void fill(Rect area, Colour colour, double radius = 0, double opacity = 1);
  void circle(Point centre, double radius, Colour colour, double opacity = 1);
  /// Draws what `sketched` says, in units that are `unit` long and count from `origin`. A shape is
  /// a letter and numbers: R x y width height radius fills a rectangle, C x y radius a circle and
  /// P x y x y ... a polygon; O x y radius width draws a ring and L width x y x y ... a line.
  /// #RRGGBB sets the colour of what follows. Throws std::logic_error for anything else.
  void sketch(Point origin, double unit, std::string_view sketched, Colour colour = 0);
  /// Writes in the system's sans serif font, with "…" for what does not fit. Gives the width and
  /// the height that were used.
  Point write(Rect area, std::string_view text, const TextStyle& style);

  /// The picture as the bytes of a PNG. Throws std::runtime_error when it could not be drawn.
  [[nodiscard]] std::string png() const;

 private:
  std::unique_ptr<cairo_t, decltype(&cairo_destroy)> context{nullptr, &cairo_destroy};
};

}  // namespace corvane::standin
