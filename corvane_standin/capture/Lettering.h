#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "corvane_standin/capture/Canvas.h"

namespace corvane::standin {

/// A way of writing. Capitals are 0.7 of the size high.
struct Font {
  enum class Weight { regular, medium, bold };

  double size = 17;
  Weight weight = Weight::regular;
};

/// Writes texts on canvases of one scale with letters of its own, and keeps every letter once
/// drawn, as the next picture has it again. Texts are valid UTF-8.
class Lettering {
 public:
  explicit Lettering(int scale) : scale(scale) {}

  [[nodiscard]] double width(std::string_view text, Font font);
  /// `text`, or as much of its front as fits into `space` with "…" after it.
  [[nodiscard]] std::string cut(std::string_view text, Font font, double space);
  /// The words of `text` in lines no wider than `space`, as far as single words are not.
  [[nodiscard]] std::vector<std::string> wrapped(std::string_view text, Font font, double space);

  /// The baseline of the text begins at `at`.
  void draw(Canvas& canvas, Point at, std::string_view text, Font font, Colour colour);
  void drawCentred(Canvas& canvas, Point at, std::string_view text, Font font, Colour colour);
  void drawEndingAt(Canvas& canvas, Point at, std::string_view text, Font font, Colour colour);

 private:
  /// A letter as it is painted, from its upper left pixel, which lies so far from the pen.
  struct Letter {
    double advance = 0;
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> mask;
  };
  using Key = std::tuple<char32_t, double, Font::Weight>;

  [[nodiscard]] const Letter& letter(char32_t character, Font font);
  [[nodiscard]] Letter drawLetter(char32_t character, Font font) const;
  static void drawLine(Letter& letter, Point from, Point to, double thickness);

  int scale;
  std::map<Key, Letter> letters;
};

/// Where a line of `font` has its baseline so that its capitals stand in the middle of `y`.
[[nodiscard]] inline double baselineAround(double y, Font font) {
  return y + font.size * 0.35;
}

}  // namespace corvane::standin
