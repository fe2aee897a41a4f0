#include "corvane_standin/capture/ElementPainter.h"

#include "corvane_standin/capture/GoodsPictures.h"
#include "corvane_standin/capture/Symbols.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;
using Weight = Font::Weight;

constexpr Font bodyFont{17};
constexpr Font strongFont{17, Weight::medium};
constexpr Font smallFont{14};
constexpr double paragraphLine = 24;

Rect paintSearchField(const Element& element, Rect area, const Brush& brush) {
  const Rect box = area.inset(0, 4);
  const auto& look = brush.look;
  if (element.strong) brush.canvas.fillRounded(box.inset(-2), 14, look.accent);
  brush.canvas.fillRounded(box, 12, element.strong ? look.card : rgb(0xE7E5DF));
  drawMagnifier(brush.canvas, {box.x + 22, box.centre().y}, look.quiet);
  const bool isEmpty = element.detail.empty();
  const std::string& text = isEmpty ? element.label : element.detail;
  const double space = box.width - 56;
  brush.line(box.x + 42, box.centre().y, space, text, bodyFont, isEmpty ? look.quiet : look.ink);
  if (element.strong) {
    const double used = isEmpty ? 0 : brush.letters.width(text, bodyFont);
    brush.canvas.fillRounded({box.x + 43 + used, box.centre().y - 11, 2, 22}, 1, look.accent);
  }
  return box;
}

void paintParagraph(const Element& element, Rect area, const Brush& brush) {
  double y = area.y + paragraphLine / 2;
  for (const auto& line : brush.letters.wrapped(element.label, bodyFont, area.width)) {
    brush.line(area.x, y, area.width, line, bodyFont, brush.look.quiet);
    y += paragraphLine;
  }
}

Rect paintCard(const Element& element, Rect area, const Brush& brush) {
  const Rect card = area.inset(0, 6);
  brush.canvas.fillRounded(card.moved(0, 1.5), 16, brush.look.line);
  brush.canvas.fillRounded(card, 16, brush.look.card);
  const Rect picture{card.x + 8, card.y + 8, card.width - 16, card.height - 66};
  drawGoods(brush.canvas, picture, 10, element.label);
  brush.line(card.x + 12, card.bottom() - 40, card.width - 24, element.label, {15, Weight::medium},
             brush.look.ink);
  brush.line(card.x + 12, card.bottom() - 18, card.width - 24, element.detail, smallFont,
             brush.look.quiet);
  return card;
}

Rect paintRow(const Element& element, Rect area, const Brush& brush) {
  Rect row = area.inset(0, 3);
  Rect touched = row;
  if (!element.swipeAction.empty()) {
    constexpr double uncovered = 104;
    brush.canvas.fillRounded(row, 14, brush.look.danger);
    touched = {row.right() - uncovered, row.y, uncovered, row.height};
    brush.centred(touched.centre(), element.swipeAction, strongFont, white);
    row = {row.x - 16, row.y, row.width - uncovered + 8, row.height};
  }
  brush.canvas.fillRounded(row, 14, brush.look.card);
  double left = row.x + 16;
  if (element.picture != Element::Picture::none) {
    const Rect tile{row.x + 8, row.y + 8, row.height - 16, row.height - 16};
    if (element.picture == Element::Picture::goods) {
      drawGoods(brush.canvas, tile, 9, element.label);
    } else {
      drawRoute(brush.canvas, tile, 9, element.label, brush.look.accent);
    }
    left = tile.right() + 14;
  }
  double right = row.right() - 16;
  const double middle = row.centre().y;
  if (element.strong) {
    drawTick(brush.canvas, {right - 8, middle}, 16, 2.4, brush.look.accent);
  } else {
    drawChevron(brush.canvas, {right, middle}, false, brush.look.disabled);
  }
  right -= 22;
  brush.endingAt({right, middle}, element.detail, smallFont, brush.look.quiet);
  right -= brush.letters.width(element.detail, smallFont) + 10;
  brush.line(left, middle, right - left, element.label, bodyFont, brush.look.ink);
  return touched;
}

Rect paintField(const Element& element, Rect area, const Brush& brush) {
  const Rect box{area.x, area.y + 24, area.width, area.height - 34};
  const auto& look = brush.look;
  brush.line(area.x + 2, area.y + 12, area.width, element.label, smallFont, look.quiet);
  brush.canvas.fillRounded(box, 12, element.strong ? look.accent : look.line);
  brush.canvas.fillRounded(box.inset(element.strong ? 2 : 1), element.strong ? 10.0 : 11.0,
                           look.card);
  brush.line(box.x + 14, box.centre().y, box.width - 28, element.detail, bodyFont, look.ink);
  if (element.strong) {
    const double used = std::min(brush.letters.width(element.detail, bodyFont), box.width - 30);
    brush.canvas.fillRounded({box.x + 15 + used, box.centre().y - 11, 2, 22}, 1, look.accent);
  }
  return box;
}

Rect paintToggle(const Element& element, Rect area, const Brush& brush) {
  const Rect row = area.inset(0, 3);
  brush.canvas.fillRounded(row, 14, brush.look.card);
  const Rect track{row.right() - 67, row.centre().y - 15, 51, 31};
  brush.canvas.fillRounded(track, 15.5, element.strong ? brush.look.accent : brush.look.disabled);
  const double knob = element.strong ? track.right() - 15.5 : track.x + 15.5;
  brush.canvas.fillCircle({knob, track.centre().y}, 13.5, white);
  brush.line(row.x + 16, row.centre().y, track.x - row.x - 30, element.label, bodyFont,
             brush.look.ink);
  return track;
}

Rect paintSlider(const Element& element, Rect area, const Brush& brush) {
  const auto& look = brush.look;
  const Rect box = area.inset(0, 3);
  brush.canvas.fillRounded(box, 14, look.card);
  brush.line(box.x + 16, box.y + 22, 200, element.label, strongFont, look.ink);
  brush.endingAt({box.right() - 16, box.y + 22}, element.detail, smallFont, look.quiet);
  const Rect track{box.x + 28, box.bottom() - 30, box.width - 56, 4};
  const double handle = track.x + track.width * element.share;
  brush.canvas.fillRounded(track, 2, look.line);
  brush.canvas.fillRounded({track.x, track.y, handle - track.x, 4}, 2, look.accent);
  for (const double x : {track.x, handle}) {
    brush.canvas.fillCircle({x, track.centre().y + 1}, 13.5, look.disabled);
    brush.canvas.fillCircle({x, track.centre().y}, 13, white);
  }
  return {handle - 13, track.centre().y - 13, 26, 26};
}

void paintAmount(const Element& element, Rect area, const Brush& brush) {
  const Font font = element.strong ? Font{20, Weight::bold} : bodyFont;
  const Colour colour = element.strong ? brush.look.ink : brush.look.quiet;
  brush.line(area.x, area.centre().y, area.width, element.label, font, colour);
  brush.endingAt({area.right(), area.centre().y}, element.detail, font, colour);
}

Rect paintMap(const Element& element, Rect area, const Brush& brush) {
  const Rect map = area.inset(0, 6);
  drawRoute(brush.canvas, map, 18, element.label, brush.look.accent);
  brush.canvas.fillRounded({map.x + 12, map.bottom() - 76, map.width - 24, 64}, 14, white);
  brush.line(map.x + 30, map.bottom() - 44, 180, element.label, {17, Weight::medium},
             brush.look.ink);
  brush.endingAt({map.right() - 30, map.bottom() - 44}, element.detail, {24, Weight::bold},
                 brush.look.accent);
  return map;
}

void paintNotice(const Element& element, Rect area, const Brush& brush) {
  const Point sign{area.centre().x, area.y + area.height * 0.4};
  const Colour colour = element.strong ? brush.look.accent : brush.look.disabled;
  brush.canvas.fillCircle(sign, 46, element.strong ? brush.look.accentTint : brush.look.line);
  if (element.strong) {
    drawTick(brush.canvas, sign, 44, 6, colour);
  } else {
    const Point corner = sign - Point{20, 14};
    brush.canvas.fillRounded({corner.x, corner.y, 40, 32}, 6, brush.look.quiet);
    brush.canvas.fillRounded({corner.x + 4, corner.y + 4, 32, 24}, 3, brush.look.line);
  }
  const Font font{20, Weight::bold};
  double y = sign.y + 84;
  for (const auto& line : brush.letters.wrapped(element.label, font, area.width - 40)) {
    brush.centred({area.centre().x, y}, line, font, brush.look.ink);
    y += 28;
  }
  for (const auto& line : brush.letters.wrapped(element.detail, bodyFont, area.width - 60)) {
    brush.centred({area.centre().x, y}, line, bodyFont, brush.look.quiet);
    y += paragraphLine;
  }
}

Rect paintButton(const Element& element, Rect area, const Brush& brush) {
  const Rect button = area.inset(0, 5);
  const auto& look = brush.look;
  const Colour face = !element.enabled ? look.disabled
                      : element.strong ? look.accent
                                       : look.accentTint;
  const Colour text = !element.enabled || element.strong ? white : look.accent;
  brush.canvas.fillRounded(button, 14, face);
  brush.centred(button.centre(), brush.letters.cut(element.label, strongFont, button.width - 24),
                strongFont, text);
  return button;
}

Rect paintRoundButton(const Element& element, Rect area, const Brush& brush) {
  const Point centre = area.centre() - Point{0, 10};
  constexpr double radius = 34;
  brush.canvas.fillCircle(centre + Point{0, 2}, radius, brush.look.line);
  brush.canvas.fillCircle(centre, radius, brush.look.accent);
  brush.canvas.fillCircle(centre, 12, white);
  brush.centred({centre.x, centre.y + radius + 14}, element.label, {14, Weight::medium},
                brush.look.accent);
  return {centre.x - radius, centre.y - radius, 2 * radius, 2 * radius};
}

}  // namespace

double heightOf(const Element& element, double width, Lettering& letters) {
  switch (element.kind) {
    case Kind::searchField:
      return 52;
    case Kind::heading:
      return 46;
    case Kind::paragraph: {
      const auto lines = letters.wrapped(element.label, bodyFont, width).size();
      return paragraphLine * static_cast<double>(lines) + 14;
    }
    case Kind::card:
      return 218;
    case Kind::row:
      return element.picture == Element::Picture::none ? 56 : 76;
    case Kind::field:
      return 82;
    case Kind::toggle:
      return 58;
    case Kind::slider:
      return 96;
    case Kind::amount:
      return element.strong ? 44 : 34;
    case Kind::hero:
      return 330;
    case Kind::map:
      return 420;
    case Kind::notice:
      return 380;
    case Kind::button:
      return 62;
    case Kind::roundButton:
      return 112;
  }
  return 0;
}

Rect paintElement(const Element& element, Rect area, const Brush& brush) {
  switch (element.kind) {
    case Kind::searchField:
      return paintSearchField(element, area, brush);
    case Kind::heading:
      brush.line(area.x, area.centre().y + 3, area.width, element.label, {22, Weight::bold},
                 brush.look.ink);
      return area;
    case Kind::paragraph:
      paintParagraph(element, area, brush);
      return area;
    case Kind::card:
      return paintCard(element, area, brush);
    case Kind::row:
      return paintRow(element, area, brush);
    case Kind::field:
      return paintField(element, area, brush);
    case Kind::toggle:
      return paintToggle(element, area, brush);
    case Kind::slider:
      return paintSlider(element, area, brush);
    case Kind::amount:
      paintAmount(element, area, brush);
      return area;
    case Kind::hero:
      drawGoods(brush.canvas, area.inset(0, 6), 18, element.label);
      return area;
    case Kind::map:
      return paintMap(element, area, brush);
    case Kind::notice:
      paintNotice(element, area, brush);
      return area;
    case Kind::button:
      return paintButton(element, area, brush);
    case Kind::roundButton:
      return paintRoundButton(element, area, brush);
  }
  return area;
}

}  // namespace corvane::standin
