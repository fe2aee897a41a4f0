#include "corvane_standin/capture/ScreenPainter.h"

#include <algorithm>
#include <array>
#include <utility>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/steps/Steps.h"

namespace corvane::standin {

using namespace palette;

namespace {

using Align = Canvas::Align;
using Kind = Element::Kind;
using Weight = Font::Weight;

constexpr Font bodyFont{17};
constexpr Font strongFont{17, Weight::medium};
constexpr Font smallFont{14};
constexpr double lineHeight = 24;

/// Signs in points, but for the tick, which is one unit wide.
constexpr std::string_view magnifier = "O -2 -2 7 2 L 2 3.2 3.2 9 9";
constexpr std::string_view tick = "L .14 -.5 .05 -.12 .42 .5 -.38";
constexpr std::string_view leftChevron = "L 2 7 -7 0 0 7 7";
constexpr std::string_view rightChevron = "L 2 -7 -7 0 0 -7 7";

/// What is drawn for a name that has one of the words, which are separated by spaces, in it.
struct Picture {
  std::string_view words;
  std::string_view shapes;
  Colour ground = white;
};

/// In a square whose sides are 1 long; the last one stands for other goods.
constexpr std::array goodsPictures{
    Picture{"mug",
            "#F7F5EE O .68 .52 .11 .05 R .28 .3 .4 .46 .07"
            "#2F4A7A R .26 .27 .44 .06 .03 #E4E0D4 R .36 .44 .05 .2 .025",
            0xBFD3E6},
    Picture{"apron",
            "#5E4630 O .5 .26 .11 .025 L .025 .34 .52 .18 .58 L .025 .66 .52 .82 .58"
            "#8C6A4A P .39 .3 .61 .3 .7 .5 .73 .84 .27 .84 .3 .5"
            "#795A3D R .38 .56 .24 .15 .03",
            0xEBDCC8},
    Picture{"linen",
            "#D9CDB8 R .2 .6 .6 .14 .06 #B2A897 R .28 .6 .03 .14 0"
            "#B9C4B4 R .2 .45 .6 .14 .06 #98A194 R .28 .45 .03 .14 0"
            "#F0E9DC R .2 .3 .6 .14 .06 #C5BFB4 R .28 .3 .03 .14 0",
            0xC9D6CF},
    Picture{"bowl",
            "#3B525C R .4 .7 .2 .07 .02 #4F6D7A P .2 .45 .8 .45 .77 .58 .7 .67 .6 .73 .4 .73 .3 .67"
            " .23 .58 #8499A2 R .17 .42 .66 .06 .03",
            0xEAD7CF},
    Picture{"candle",
            "#E9BE5A R .37 .38 .26 .42 .03 #F3D184 R .37 .38 .09 .42 .03"
            "#4A3A24 L .02 .5 .38 .5 .32 #E8742C C .5 .27 .05 P .455 .25 .5 .14 .545 .25",
            0xDCE3D0},
    Picture{"lamp",
            "#3B3B40 L .03 .5 .78 .5 .46 R .34 .77 .32 .05 .025"
            "#F2C14E P .39 .2 .61 .2 .74 .5 .26 .5 #F7D583 P .39 .2 .47 .2 .41 .5 .26 .5",
            0xCDD3E3},
    Picture{"plant",
            "#4E8A4A P .5 .6 .3 .46 .26 .24 .46 .4 #42753F P .5 .6 .7 .46 .74 .24 .54 .4"
            "#71A16E P .5 .6 .42 .36 .5 .16 .58 .36"
            "#C06B45 P .31 .58 .69 .58 .63 .84 .37 .84 #CF7E58 R .28 .55 .44 .08 .02",
            0xE6E0EE},
    Picture{"bottle",
            "#5FA39A R .44 .16 .12 .24 .03 R .35 .34 .3 .48 .09"
            "#B98A56 R .42 .14 .16 .06 .02 #F4F0E4 R .35 .52 .3 .16 0",
            0xF0D9D6},
    Picture{"basket",
            "#845D33 O .5 .44 .22 .035 #B07C44 P .2 .44 .8 .44 .72 .8 .28 .8"
            "#7B5730 L .018 .25 .53 .75 .53 L .018 .25 .62 .75 .62 L .018 .25 .71 .75 .71"
            "#C49D73 R .18 .42 .64 .06 .03",
            0xF1E4C6},
};

/// Routes on a map, in a square whose sides are 1 long; every other walk has the last one.
constexpr std::array routes{
    Picture{"lake",
            "L .025 .15 .76 .19 .69 .23 .64 .28 .57 .31 .49 .36 .44 .42 .42 .48 .45 .52 .5 .56 .52"
            " .62 .51 .67 .47 .71 .42 .74 .38 .8 .35"},
    Picture{"ridge",
            "L .025 .18 .8 .22 .74 .27 .71 .3 .65 .32 .58 .37 .54 .43 .54 .48 .5 .51 .43 .54 .38"
            " .6 .35 .65 .33 .69 .27 .76 .24"},
    Picture{"",
            "L .025 .15 .72 .18 .64 .23 .57 .29 .52 .36 .51 .43 .53 .49 .57 .55 .59 .61 .57 .65 .52"
            " .68 .45 .72 .39 .78 .36 .83 .34"},
};
constexpr std::string_view land =
    "#B5D3E0 R .58 .1 .3 .24 .09 #F7F6F1 L .045 .03 .26 .97 .46 L .045 .37 .03 .26 .97";

/// About 22 points high; the last one stands for other tabs.
constexpr std::array tabSymbols{
    Picture{"cart basket bag",
            "L 2 -9 -4 9 -4 8 10 -8 10 -9 -4 L 2 -5 -4 -4.4 -7 -2.4 -9 2.4 -9 4.4 -7 5 -4"},
    Picture{"shop home", "L 2 -11 0 0 -10 11 0 L 2 -8 -2 -8 10 8 10 8 -2"},
    Picture{"account profile", "O 0 -5 5 2 L 2 -9 10 -8 5 -4 2.4 4 2.4 8 5 9 10"},
    Picture{"settings",
            "L 2 -10 -7 10 -7 C -4 -7 3.2 L 2 -10 0 10 0 C 5 0 3.2"
            "L 2 -10 7 10 7 C -1 7 3.2"},
    Picture{"map", "O 0 -3 7.5 2 L 2 -5 2.6 0 10 5 2.6 C 0 -3 2.4"},
    Picture{"", "C -9 -7 1.6 L 2 -4 -7 10 -7 C -9 0 1.6 L 2 -4 0 10 0 C -9 7 1.6 L 2 -4 7 10 7"},
};

template <std::size_t count>
const Picture& pictureOf(const std::array<Picture, count>& pictures, std::string_view name) {
  const std::string lower = asciiLowercase(name);
  const auto* const found = std::ranges::find_if(pictures, [&lower](const Picture& picture) {
    return std::ranges::any_of(split(picture.words),
                               [&lower](auto word) { return lower.find(word) != lower.npos; });
  });
  return found == pictures.end() ? pictures.back() : *found;
}

/// Sketches into the middle of a tile.
void drawInto(Canvas& canvas, Rect tile, std::string_view shapes, Colour colour = black) {
  const double side = std::min(tile.width, tile.height);
  canvas.sketch({tile.centre().x - side / 2, tile.centre().y - side / 2}, side, shapes, colour);
}

void drawGoods(Canvas& canvas, Rect tile, double radius, std::string_view name) {
  const Picture& picture = pictureOf(goodsPictures, name);
  canvas.fill(tile, picture.ground, radius);
  drawInto(canvas, tile, picture.shapes);
}

void drawRoute(Canvas& canvas, Rect tile, double radius, std::string_view name, Colour route) {
  canvas.fill(tile, 0xDCE8D2, radius);
  drawInto(canvas, tile, land);
  drawInto(canvas, tile, pictureOf(routes, name).shapes, route);
}

/// Writes the label at the left end of `area` and the detail at the right one.
void writePair(Canvas& canvas, Rect area, const Element& element, Font labelFont, Font detailFont,
               Colour labelColour, Colour detailColour) {
  canvas.write(area, element.detail, detailFont, detailColour, Align::right);
  area.width -= canvas.width(element.detail, detailFont) + 10;
  canvas.write(area, element.label, labelFont, labelColour);
}

/// A box to type into, with a frame and a caret while it is in use.
void paintInput(Canvas& canvas, const Element& element, Rect box, Rect text, Colour accent) {
  canvas.fill(box, element.strong ? accent : hairline, 12);
  canvas.fill(box.inset(element.strong ? 2 : 1), white, 11);
  canvas.write(text, element.detail, bodyFont, ink);
  if (!element.strong) return;
  const double used = std::min(canvas.width(element.detail, bodyFont), text.width - 2);
  canvas.fill({text.x + 1 + used, text.centre().y - 11, 2, 22}, accent);
}

Rect paintSearchField(Canvas& canvas, const Element& element, Rect box, Colour accent) {
  const Rect text{box.x + 42, box.y, box.width - 56, box.height};
  paintInput(canvas, element, box, text, accent);
  canvas.sketch({box.x + 22, box.centre().y}, 1, magnifier, quiet);
  if (element.detail.empty()) canvas.write(text.inset(4, 0), element.label, bodyFont, quiet);
  return box;
}

/// With its name above it, for which a dialog has no space.
Rect paintField(Canvas& canvas, const Element& element, Rect box, Colour accent) {
  if (element.kind == Kind::field) {
    canvas.write({box.x + 2, box.y, box.width, 24}, element.label, smallFont, quiet);
    box = {box.x, box.y + 24, box.width, box.height - 34};
  }
  paintInput(canvas, element, box, box.inset(14, 0), accent);
  return box;
}

Rect paintCard(Canvas& canvas, const Element& element, Rect area, Colour) {
  canvas.fill({area.x, area.y + 1.5, area.width, area.height}, hairline, 16);
  canvas.fill(area, white, 16);
  drawGoods(canvas, {area.x + 8, area.y + 8, area.width - 16, area.height - 66}, 10, element.label);
  const Rect text = area.inset(12, 0);
  canvas.write({text.x, area.bottom() - 52, text.width, 24}, element.label, {15, Weight::medium},
               ink);
  canvas.write({text.x, area.bottom() - 30, text.width, 24}, element.detail, smallFont, quiet);
  return area;
}

Rect paintRow(Canvas& canvas, const Element& element, Rect row, Colour accent) {
  Rect touched = row;
  if (element.moved) {
    constexpr double uncovered = 104;
    canvas.fill(row, danger, 14);
    touched = {row.right() - uncovered, row.y, uncovered, row.height};
    canvas.write(touched.inset(6, 0), element.buttonUnder, strongFont, white, Align::centre);
    row = {row.x - 16, row.y, row.width - uncovered + 8, row.height};
  }
  canvas.fill(row, white, 14);
  const Rect tile{row.x + 8, row.y + 8, row.height - 16, row.height - 16};
  if (element.kind == Kind::goods) drawGoods(canvas, tile, 9, element.label);
  if (element.kind == Kind::walk) drawRoute(canvas, tile, 9, element.label, accent);
  const double left = element.kind == Kind::row ? row.x + 16 : tile.right() + 14;
  const Point end{row.right() - 16, row.centre().y};
  element.strong ? canvas.sketch({end.x - 8, end.y}, 16, tick, accent)
                 : canvas.sketch(end, 1, rightChevron, disabled);
  writePair(canvas, {left, row.y, end.x - 22 - left, row.height}, element, bodyFont, smallFont, ink,
            quiet);
  return touched;
}

Rect paintToggle(Canvas& canvas, const Element& element, Rect row, Colour accent) {
  canvas.fill(row, white, 14);
  const Rect track{row.right() - 67, row.centre().y - 15, 51, 31};
  canvas.fill(track, element.strong ? accent : disabled, 15.5);
  canvas.circle({element.strong ? track.right() - 15.5 : track.x + 15.5, track.centre().y}, 13.5,
                white);
  canvas.write({row.x + 16, row.y, track.x - row.x - 30, row.height}, element.label, bodyFont, ink);
  return track;
}

Rect paintSlider(Canvas& canvas, const Element& element, Rect box, Colour accent) {
  canvas.fill(box, white, 14);
  writePair(canvas, {box.x + 16, box.y + 10, box.width - 32, 24}, element, strongFont, smallFont,
            ink, quiet);
  const Rect track{box.x + 28, box.bottom() - 30, box.width - 56, 4};
  const double handle = track.x + track.width * (element.moved ? 0.5 : 0.92);
  canvas.fill(track, hairline, 2);
  canvas.fill({track.x, track.y, handle - track.x, 4}, accent, 2);
  for (const double x : {track.x, handle}) {
    canvas.circle({x, track.centre().y + 1}, 13.5, disabled);
    canvas.circle({x, track.centre().y}, 13, white);
  }
  return {handle - 13, track.centre().y - 13, 26, 26};
}

Rect paintParagraph(Canvas& canvas, const Element& element, Rect area, Colour) {
  canvas.writeLines({area.x, area.y + lineHeight / 2, area.width, area.height}, lineHeight,
                    element.label, bodyFont, quiet, Align::left);
  return area;
}

Rect paintHero(Canvas& canvas, const Element& element, Rect area, Colour) {
  drawGoods(canvas, area, 18, element.label);
  return area;
}

Rect paintMap(Canvas& canvas, const Element& element, Rect map, Colour accent) {
  drawRoute(canvas, map, 18, element.label, accent);
  const Rect caption{map.x + 12, map.bottom() - 76, map.width - 24, 64};
  canvas.fill(caption, white, 14);
  writePair(canvas, caption.inset(18, 0), element, strongFont, {24, Weight::bold}, ink, accent);
  return map;
}

Rect paintNotice(Canvas& canvas, const Element& element, Rect area, Colour accent) {
  const Point sign{area.centre().x, area.y + area.height * 0.4};
  canvas.circle(sign, 46, element.strong ? accent : quiet, 0.12);
  element.strong ? canvas.sketch(sign, 44, tick, accent)
                 : canvas.sketch({sign.x, sign.y + 4}, 1.6, tabSymbols.front().shapes, quiet);
  const double y = canvas.writeLines({area.x + 20, sign.y + 84, area.width - 40, 56}, 28,
                                     element.label, {20, Weight::bold}, ink, Align::centre);
  canvas.writeLines({area.x + 30, y, area.width - 60, 96}, lineHeight, element.detail, bodyFont,
                    quiet, Align::centre);
  return area;
}

/// A heading or a line of a bill.
Rect paintLine(Canvas& canvas, const Element& element, Rect area, Colour) {
  const bool isHeading = element.kind == Kind::heading;
  const bool standsOut = isHeading || element.strong;
  const Font font{isHeading   ? 22.0
                  : standsOut ? 20
                              : 17,
                  standsOut ? Weight::bold : Weight::regular};
  const Colour colour = standsOut ? ink : quiet;
  writePair(canvas, area, element, font, font, colour, colour);
  return area;
}

Rect paintButton(Canvas& canvas, const Element& element, Rect button, Colour accent) {
  const bool isFilled = !element.enabled || element.strong;
  canvas.fill(button, element.enabled ? accent : disabled, 14, isFilled ? 1 : 0.12);
  canvas.write(button.inset(12, 0), element.label, strongFont, isFilled ? white : accent,
               Align::centre);
  return button;
}

Rect paintRoundButton(Canvas& canvas, const Element& element, Rect area, Colour accent) {
  const Point centre{area.centre().x, area.centre().y - 10};
  constexpr double radius = 34;
  canvas.circle(centre, radius, element.enabled ? accent : disabled);
  canvas.circle(centre, 12, white);
  canvas.write({area.x, centre.y + radius + 2, area.width, 24}, element.label, {14, Weight::medium},
               accent, Align::centre);
  return {centre.x - radius, centre.y - radius, 2 * radius, 2 * radius};
}

Rect paintIcon(Canvas& canvas, const Element& element, Rect area, Colour accent) {
  element.kind == Kind::back ? canvas.sketch({area.x + 14, area.centre().y}, 1, leftChevron, accent)
                             : canvas.sketch(area.centre(), 1, magnifier, accent);
  return area;
}

Rect paintTab(Canvas& canvas, const Element& element, Rect area, Colour accent) {
  const Colour colour = element.strong ? accent : quiet;
  canvas.sketch({area.centre().x, area.centre().y - 8}, 1,
                pictureOf(tabSymbols, element.label).shapes, colour);
  canvas.write({area.x + 4, area.bottom() - 18, area.width - 8, 16}, element.label,
               {12, element.strong ? Weight::medium : Weight::regular}, colour, Align::centre);
  return area;
}

Rect paintDialog(Canvas& canvas, const Element& element, Rect box, Colour) {
  canvas.fill(box, white, 22);
  canvas.write({box.x + 20, box.y + 24, box.width - 40, 24}, element.label, {18, Weight::bold}, ink,
               Align::centre);
  canvas.writeLines({box.x + 24, box.y + 66, box.width - 48, 44}, 22, element.detail, {15}, quiet,
                    Align::centre);
  return box;
}

Rect paintAppIcon(Canvas& canvas, const Element& element, Rect area, Colour) {
  const Rect tile{area.centre().x - 31, area.y, 62, 62};
  canvas.fill(tile, accentOf(element.label), 15);
  canvas.write(tile, element.label.substr(0, 1), {30, Weight::medium}, white, Align::centre);
  canvas.write({area.x + 4, tile.bottom() + 1, area.width - 8, 24}, element.label,
               {12, Weight::medium}, white, Align::centre);
  return tile;
}

/// In the order of Element::Kind.
constexpr std::array looks{
    ElementLook{Kind::back, Region::titleBar, 44, 0, paintIcon},
    ElementLook{Kind::searchIcon, Region::titleBar, 44, 0, paintIcon},
    ElementLook{Kind::searchField, Region::page, 52, 4, paintSearchField},
    ElementLook{Kind::heading, Region::page, 46, 0, paintLine},
    ElementLook{Kind::paragraph, Region::page, 14 + 3 * lineHeight, 0, paintParagraph},
    ElementLook{Kind::card, Region::page, 218, 6, paintCard},
    ElementLook{Kind::goods, Region::page, 76, 3, paintRow},
    ElementLook{Kind::walk, Region::page, 76, 3, paintRow},
    ElementLook{Kind::row, Region::page, 56, 3, paintRow},
    ElementLook{Kind::field, Region::page, 82, 0, paintField},
    ElementLook{Kind::toggle, Region::page, 58, 3, paintToggle},
    ElementLook{Kind::slider, Region::page, 96, 3, paintSlider},
    ElementLook{Kind::hero, Region::page, 330, 6, paintHero},
    ElementLook{Kind::map, Region::page, 420, 6, paintMap},
    ElementLook{Kind::notice, Region::page, 380, 0, paintNotice},
    ElementLook{Kind::amount, Region::foot, 34, 0, paintLine},
    ElementLook{Kind::button, Region::foot, 62, 5, paintButton},
    ElementLook{Kind::roundButton, Region::foot, 112, 0, paintRoundButton},
    ElementLook{Kind::tab, Region::tabBar, 54, 0, paintTab},
    ElementLook{Kind::dialog, Region::dialog, 126, 0, paintDialog},
    ElementLook{Kind::dialogField, Region::dialog, 62, 8, paintField},
    ElementLook{Kind::dialogButton, Region::dialog, 70, 10, paintButton},
    ElementLook{Kind::appIcon, Region::homeScreen, 100, 0, paintAppIcon},
};

static_assert(looks.size() == static_cast<std::size_t>(Kind::appIcon) + 1);
static_assert(std::ranges::is_sorted(looks, {}, &ElementLook::kind));

}  // namespace

const ElementLook& lookOf(Element::Kind kind) {
  return looks[static_cast<std::size_t>(kind)];
}

Colour accentOf(std::string_view appName) {
  constexpr std::array<Colour, 6> accents{0x1F7A6B, 0xB4532A, 0x3A5BC7,
                                          0x7A3E9D, 0xA33B5C, 0x2E6F9E};
  std::uint32_t sum = 0;
  for (const char c : appName) sum = sum * 31 + static_cast<unsigned char>(c);
  return accents[sum % accents.size()];
}

}  // namespace corvane::standin
