#include "corvane_standin/capture/ElementPainter.h"

#include <algorithm>
#include <array>

namespace corvane::standin {

using namespace palette;

namespace {

using Align = Canvas::Align;
using Kind = Element::Kind;
using Weight = Font::Weight;

constexpr Font bodyFont{17};
constexpr Font strongFont{17, Weight::medium};
constexpr Font smallFont{14};
constexpr double paragraphLine = 24;

/// Writes the label at the left end of `area` and the detail at the right one.
void writePair(const Brush& brush, Rect area, const Element& element, Font labelFont,
               Font detailFont, Colour labelColour, Colour detailColour) {
  brush.canvas.write(area, element.detail, detailFont, detailColour, Align::right);
  area.width -= brush.canvas.width(element.detail, detailFont) + 10;
  brush.canvas.write(area, element.label, labelFont, labelColour);
}

void paintCaret(const Brush& brush, Rect text, std::string_view before) {
  const double used = std::min(brush.canvas.width(before, bodyFont), text.width - 2);
  brush.canvas.fill({text.x + 1 + used, text.centre().y - 11, 2, 22}, brush.accent, 1);
}

Rect paintSearchField(const Element& element, Rect box, const Brush& brush) {
  if (element.strong) brush.canvas.fill(box.inset(-2), brush.accent, 14);
  brush.canvas.fill(box, element.strong ? white : 0xE7E5DF, 12);
  brush.canvas.sketch({box.x + 22, box.centre().y}, 1, symbols::magnifier, quiet);
  const bool isEmpty = element.detail.empty();
  const Rect text{box.x + 42, box.y, box.width - 56, box.height};
  brush.canvas.write(text, isEmpty ? element.label : element.detail, bodyFont,
                     isEmpty ? quiet : ink);
  if (element.strong) paintCaret(brush, text, element.detail);
  return box;
}

Rect paintCard(const Element& element, Rect area, const Brush& brush) {
  brush.canvas.fill({area.x, area.y + 1.5, area.width, area.height}, hairline, 16);
  brush.canvas.fill(area, white, 16);
  drawGoods(brush.canvas, {area.x + 8, area.y + 8, area.width - 16, area.height - 66}, 10,
            element.label);
  brush.canvas.write({area.x + 12, area.bottom() - 52, area.width - 24, 24}, element.label,
                     {15, Weight::medium}, ink);
  brush.canvas.write({area.x + 12, area.bottom() - 30, area.width - 24, 24}, element.detail,
                     smallFont, quiet);
  return area;
}

Rect paintRow(const Element& element, Rect row, const Brush& brush) {
  Rect touched = row;
  if (!element.swipeAction.empty()) {
    constexpr double uncovered = 104;
    brush.canvas.fill(row, danger, 14);
    touched = {row.right() - uncovered, row.y, uncovered, row.height};
    brush.canvas.write(touched.inset(6, 0), element.swipeAction, strongFont, white, Align::centre);
    row = {row.x - 16, row.y, row.width - uncovered + 8, row.height};
  }
  brush.canvas.fill(row, white, 14);
  double left = row.x + 16;
  if (element.picture != Element::Picture::none) {
    const Rect tile{row.x + 8, row.y + 8, row.height - 16, row.height - 16};
    element.picture == Element::Picture::goods
        ? drawGoods(brush.canvas, tile, 9, element.label)
        : drawRoute(brush.canvas, tile, 9, element.label, brush.accent);
    left = tile.right() + 14;
  }
  const Point end{row.right() - 16, row.centre().y};
  element.strong ? brush.canvas.sketch({end.x - 8, end.y}, 16, symbols::tick, brush.accent)
                 : brush.canvas.sketch(end, 1, symbols::rightChevron, disabled);
  writePair(brush, {left, row.y, end.x - 22 - left, row.height}, element, bodyFont, smallFont, ink,
            quiet);
  return touched;
}

Rect paintField(const Element& element, Rect area, const Brush& brush) {
  const Rect box{area.x, area.y + 24, area.width, area.height - 34};
  brush.canvas.write({area.x + 2, area.y, area.width, 24}, element.label, smallFont, quiet);
  brush.canvas.fill(box, element.strong ? brush.accent : hairline, 12);
  brush.canvas.fill(box.inset(element.strong ? 2 : 1), white, element.strong ? 10 : 11);
  brush.canvas.write(box.inset(14, 0), element.detail, bodyFont, ink);
  if (element.strong) paintCaret(brush, box.inset(14, 0), element.detail);
  return box;
}

Rect paintToggle(const Element& element, Rect row, const Brush& brush) {
  brush.canvas.fill(row, white, 14);
  const Rect track{row.right() - 67, row.centre().y - 15, 51, 31};
  brush.canvas.fill(track, element.strong ? brush.accent : disabled, 15.5);
  brush.canvas.circle({element.strong ? track.right() - 15.5 : track.x + 15.5, track.centre().y},
                      13.5, white);
  brush.canvas.write({row.x + 16, row.y, track.x - row.x - 30, row.height}, element.label, bodyFont,
                     ink);
  return track;
}

Rect paintSlider(const Element& element, Rect box, const Brush& brush) {
  brush.canvas.fill(box, white, 14);
  writePair(brush, {box.x + 16, box.y + 10, box.width - 32, 24}, element, strongFont, smallFont,
            ink, quiet);
  const Rect track{box.x + 28, box.bottom() - 30, box.width - 56, 4};
  const double handle = track.x + track.width * element.share;
  brush.canvas.fill(track, hairline, 2);
  brush.canvas.fill({track.x, track.y, handle - track.x, 4}, brush.accent, 2);
  for (const double x : {track.x, handle}) {
    brush.canvas.circle({x, track.centre().y + 1}, 13.5, disabled);
    brush.canvas.circle({x, track.centre().y}, 13, white);
  }
  return {handle - 13, track.centre().y - 13, 26, 26};
}

Rect paintMap(const Element& element, Rect map, const Brush& brush) {
  drawRoute(brush.canvas, map, 18, element.label, brush.accent);
  const Rect caption{map.x + 12, map.bottom() - 76, map.width - 24, 64};
  brush.canvas.fill(caption, white, 14);
  writePair(brush, caption.inset(18, 0), element, strongFont, {24, Weight::bold}, ink,
            brush.accent);
  return map;
}

Rect paintNotice(const Element& element, Rect area, const Brush& brush) {
  const Point sign{area.centre().x, area.y + area.height * 0.4};
  brush.canvas.circle(sign, 46, element.strong ? brush.tint : hairline);
  if (element.strong) {
    brush.canvas.sketch(sign, 44, symbols::tick, brush.accent);
  } else {
    brush.canvas.fill({sign.x - 20, sign.y - 14, 40, 32}, quiet, 6);
    brush.canvas.fill({sign.x - 16, sign.y - 10, 32, 24}, hairline, 3);
  }
  const double y = brush.canvas.writeLines({area.x + 20, sign.y + 84, area.width - 40, 0}, 28,
                                           element.label, {20, Weight::bold}, ink, Align::centre);
  brush.canvas.writeLines({area.x + 30, y, area.width - 60, 0}, paragraphLine, element.detail,
                          bodyFont, quiet, Align::centre);
  return area;
}

Rect paintButton(const Element& element, Rect button, const Brush& brush) {
  const bool isFilled = !element.enabled || element.strong;
  brush.canvas.fill(button, !element.enabled ? disabled : isFilled ? brush.accent : brush.tint, 14);
  brush.canvas.write(button.inset(12, 0), element.label, strongFont,
                     isFilled ? white : brush.accent, Align::centre);
  return button;
}

Rect paintRoundButton(const Element& element, Rect area, const Brush& brush) {
  const Point centre{area.centre().x, area.centre().y - 10};
  constexpr double radius = 34;
  brush.canvas.circle({centre.x, centre.y + 2}, radius, hairline);
  brush.canvas.circle(centre, radius, brush.accent);
  brush.canvas.circle(centre, 12, white);
  brush.canvas.write({area.x, centre.y + radius + 2, area.width, 24}, element.label,
                     {14, Weight::medium}, brush.accent, Align::centre);
  return {centre.x - radius, centre.y - radius, 2 * radius, 2 * radius};
}

Rect paintHeading(const Element& element, Rect area, const Brush& brush) {
  brush.canvas.write({area.x, area.y + 3, area.width, area.height}, element.label,
                     {22, Weight::bold}, ink);
  return area;
}

Rect paintParagraph(const Element& element, Rect area, const Brush& brush) {
  brush.canvas.writeLines({area.x, area.y + paragraphLine / 2, area.width, 0}, paragraphLine,
                          element.label, bodyFont, quiet, Align::left);
  return area;
}

Rect paintAmount(const Element& element, Rect area, const Brush& brush) {
  const Font font = element.strong ? Font{20, Weight::bold} : bodyFont;
  const Colour colour = element.strong ? ink : quiet;
  writePair(brush, area, element, font, font, colour, colour);
  return area;
}

Rect paintHero(const Element& element, Rect area, const Brush& brush) {
  drawGoods(brush.canvas, area, 18, element.label);
  return area;
}

/// How elements of a kind are shown.
struct ElementLook {
  Kind kind;
  double height;
  /// Left free above and below.
  double space;
  bool isAtFoot;
  Rect (*paint)(const Element& element, Rect area, const Brush& brush);
};

/// In the order of Element::Kind.
constexpr std::array looks{
    ElementLook{Kind::searchField, 52, 4, false, paintSearchField},
    ElementLook{Kind::heading, 46, 0, false, paintHeading},
    // Higher by its lines.
    ElementLook{Kind::paragraph, 14, 0, false, paintParagraph},
    ElementLook{Kind::card, 218, 6, false, paintCard},
    ElementLook{Kind::row, 56, 3, false, paintRow},
    ElementLook{Kind::field, 82, 0, false, paintField},
    ElementLook{Kind::toggle, 58, 3, false, paintToggle},
    ElementLook{Kind::slider, 96, 3, false, paintSlider},
    ElementLook{Kind::amount, 34, 0, true, paintAmount},
    ElementLook{Kind::hero, 330, 6, false, paintHero},
    ElementLook{Kind::map, 420, 6, false, paintMap},
    ElementLook{Kind::notice, 380, 0, false, paintNotice},
    ElementLook{Kind::button, 62, 5, true, paintButton},
    ElementLook{Kind::roundButton, 112, 0, true, paintRoundButton},
};

const ElementLook& lookOf(const Element& element) {
  return looks[static_cast<std::size_t>(element.kind)];
}

static_assert(looks.size() == static_cast<std::size_t>(Kind::roundButton) + 1);
static_assert(std::is_sorted(looks.begin(), looks.end(),
                             [](const auto& a, const auto& b) { return a.kind < b.kind; }));

}  // namespace

double heightOf(const Element& element, double width, const Canvas& canvas) {
  double height = lookOf(element).height;
  if (element.kind == Kind::paragraph) {
    const auto lines = canvas.wrapped(element.label, bodyFont, width).size();
    height += paragraphLine * static_cast<double>(lines);
  }
  if (element.kind == Kind::row && element.picture != Element::Picture::none) height += 20;
  if (element.kind == Kind::amount && element.strong) height += 10;
  return height;
}

bool isAtFoot(const Element& element) {
  return lookOf(element).isAtFoot;
}

Rect paintElement(const Element& element, Rect area, const Brush& brush) {
  const ElementLook& look = lookOf(element);
  return look.paint(element, area.inset(0, look.space), brush);
}

}  // namespace corvane::standin
