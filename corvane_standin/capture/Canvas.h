#pragma once

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// 0xRRGGBB.
using Colour = std::uint32_t;

struct Font {
  enum class Weight { regular, medium, bold };

  double size = 17;
  Weight weight = Weight::regular;
};

/// A picture that is drawn on in points, each three pixels long. Texts are in the system's sans
/// serif font; what is no UTF-8 in them is drawn as a replacement character.
class Canvas {
 public:
  static constexpr int scale = 3;

  Canvas(Size size, Colour ground);

  /// With corners rounded by `radius`, covering the given share of what is there.
  void fill(Rect area, Colour colour, double radius = 0, double opacity = 1);
  void circle(Point centre, double radius, Colour colour, double opacity = 1);
  /// Draws what `sketched` says, in units that are `unit` long and count from `origin`. A shape is
  /// a letter and numbers: R x y width height radius fills a rectangle, C x y radius a circle and
  /// P x y x y ... a polygon; O x y radius width draws a ring and L width x y x y ... a line.
  /// #RRGGBB sets the colour of what follows. Throws std::logic_error for anything else.
  void sketch(Point origin, double unit, std::string_view sketched, Colour colour = 0);

  enum class Align { left, centre, right };
  /// Writes one line of text in the middle of `area`'s height, cut to its width.
  void write(Rect area, std::string_view text, Font font, Colour colour, Align align = Align::left);
  /// Writes lines that are as wide as `area`, `pitch` apart, the first with its middle at the top;
  /// what does not fit into its height is left out, with "…" for it. Gives where the middle of a
  /// further line would be.
  double writeLines(Rect area, double pitch, std::string_view text, Font font, Colour colour,
                    Align align);

  [[nodiscard]] double width(std::string_view text, Font font) const;
  /// `text`, or as much of its front as fits into `space`, with "…" after it.
  [[nodiscard]] std::string cut(std::string_view text, Font font, double space) const;
  /// The words of `text` in lines no wider than `space`, as far as single words are not.
  [[nodiscard]] std::vector<std::string> wrapped(std::string_view text, Font font,
                                                 double space) const;

  /// The picture as the bytes of a PNG. Throws std::runtime_error when it could not be drawn.
  [[nodiscard]] std::string png() const;

 private:
  struct Destroy {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
  };

  void select(Font font) const;
  void drawShape(char shape, std::span<const double> numbers);

  std::unique_ptr<cairo_t, Destroy> context;
};

}  // namespace corvane::standin
