#include "corvane_standin/capture/Lettering.h"

#include <algorithm>
#include <cmath>

#include "corvane_standin/capture/LetterStrokes.h"

namespace corvane::standin {

namespace {

/// The size of a font in units of the letters' grid.
constexpr double gridOfSize = 20;
constexpr double spaceAdvance = 5.6;
constexpr double gapBetweenLetters = 3.5;

double strokeWidth(Font::Weight weight) {
  switch (weight) {
    case Font::Weight::regular:
      return 1.6;
    case Font::Weight::medium:
      return 2.0;
    case Font::Weight::bold:
      break;
  }
  return 2.6;
}

/// Takes the first character off a valid UTF-8 text.
char32_t takeCharacter(std::string_view& text) {
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t count = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  char32_t character = count == 1 ? first : first & (0x7Fu >> count);
  for (std::size_t i = 1; i < std::min(count, text.size()); ++i) {
    character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
  }
  text.remove_prefix(std::min(count, text.size()));
  return character;
}

}  // namespace

double Lettering::width(std::string_view text, Font font) {
  double width = 0;
  while (!text.empty()) width += letter(takeCharacter(text), font).advance;
  return width;
}

std::string Lettering::cut(std::string_view text, Font font, double space) {
  if (width(text, font) <= space) return std::string(text);
  constexpr std::string_view ellipsis = "…";
  double left = space - width(ellipsis, font);
  std::string_view rest = text;
  std::size_t fitting = 0;
  while (!rest.empty()) {
    left -= letter(takeCharacter(rest), font).advance;
    if (left < 0) break;
    fitting = text.size() - rest.size();
  }
  std::string front(text.substr(0, fitting));
  while (front.ends_with(' ')) front.pop_back();
  return front.append(ellipsis);
}

std::vector<std::string> Lettering::wrapped(std::string_view text, Font font, double space) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::string word(text.substr(0, text.find(' ')));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    if (!lines.empty() && width(lines.back() + " " + word, font) <= space) {
      lines.back().append(" ").append(word);
    } else {
      lines.push_back(word);
    }
  }
  return lines;
}

void Lettering::draw(Canvas& canvas, Point at, std::string_view text, Font font, Colour colour) {
  double pen = at.x;
  const int baseline = static_cast<int>(std::lround(at.y * scale));
  while (!text.empty()) {
    const Letter& next = letter(takeCharacter(text), font);
    const int left = static_cast<int>(std::lround(pen * scale)) + next.left;
    canvas.paintMask(next.mask, next.width, left, baseline + next.top, colour);
    pen += next.advance;
  }
}

void Lettering::drawCentred(Canvas& canvas, Point at, std::string_view text, Font font,
                            Colour colour) {
  draw(canvas, {at.x - width(text, font) / 2, at.y}, text, font, colour);
}

void Lettering::drawEndingAt(Canvas& canvas, Point at, std::string_view text, Font font,
                             Colour colour) {
  draw(canvas, {at.x - width(text, font), at.y}, text, font, colour);
}

const Lettering::Letter& Lettering::letter(char32_t character, Font font) {
  const Key key(character, font.size, font.weight);
  const auto known = letters.find(key);
  if (known != letters.end()) return known->second;
  return letters.emplace(key, drawLetter(character, font)).first->second;
}

Lettering::Letter Lettering::drawLetter(char32_t character, Font font) const {
  const double unit = font.size / gridOfSize;
  Letter drawn;
  if (character <= U' ') {
    drawn.advance = spaceAdvance * unit;
    return drawn;
  }
  auto strokes = strokesOf(character);
  drawn.advance = (extentOf(strokes).width + gapBetweenLetters) * unit;
  // The gap lies half before and half after the letter; pixels run down, the letter's grid up.
  for (auto& stroke : strokes) {
    for (auto& point : stroke) {
      point = {(point.x + gapBetweenLetters / 2) * unit * scale, -point.y * unit * scale};
    }
  }
  const double thickness = strokeWidth(font.weight) * unit * scale;
  const Rect reach = extentOf(strokes).inset(-thickness / 2 - 1);
  drawn.left = static_cast<int>(std::floor(reach.x));
  drawn.top = static_cast<int>(std::floor(reach.y));
  drawn.width = static_cast<int>(std::ceil(reach.right())) - drawn.left;
  drawn.height = static_cast<int>(std::ceil(reach.bottom())) - drawn.top;
  drawn.mask.resize(static_cast<std::size_t>(drawn.width) * static_cast<std::size_t>(drawn.height));
  for (const auto& stroke : strokes) {
    drawLine(drawn, stroke.front(), stroke.front(), thickness);
    for (std::size_t i = 1; i < stroke.size(); ++i) {
      drawLine(drawn, stroke[i - 1], stroke[i], thickness);
    }
  }
  return drawn;
}

void Lettering::drawLine(Letter& letter, Point from, Point to, double thickness) {
  const double reach = thickness / 2 + 1;
  const int left = static_cast<int>(std::floor(std::min(from.x, to.x) - reach)) - letter.left;
  const int right = static_cast<int>(std::ceil(std::max(from.x, to.x) + reach)) - letter.left;
  const int top = static_cast<int>(std::floor(std::min(from.y, to.y) - reach)) - letter.top;
  const int bottom = static_cast<int>(std::ceil(std::max(from.y, to.y) + reach)) - letter.top;
  for (int y = std::max(top, 0); y < std::min(bottom, letter.height); ++y) {
    for (int x = std::max(left, 0); x < std::min(right, letter.width); ++x) {
      const Point at{letter.left + x + 0.5, letter.top + y + 0.5};
      const double edge = distanceToLine(at, from, to) - thickness / 2;
      const auto share = std::lround(std::clamp(0.5 - edge, 0.0, 1.0) * 255);
      std::uint8_t& pixel = letter.mask[static_cast<std::size_t>(y * letter.width + x)];
      pixel = std::max(pixel, static_cast<std::uint8_t>(share));
    }
  }
}

}  // namespace corvane::standin
