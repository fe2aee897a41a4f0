#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace corvane::standin {

/// A place on a screen, from its upper left corner.
struct Point {
  double x = 0;
  double y = 0;
};

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  [[nodiscard]] double right() const { return x + width; }
  [[nodiscard]] double bottom() const { return y + height; }
  [[nodiscard]] Point centre() const { return {x + width / 2, y + height / 2}; }
  [[nodiscard]] Rect inset(double horizontally, double vertically) const {
    return {x + horizontally, y + vertically, width - 2 * horizontally, height - 2 * vertically};
  }
};

/// One piece of what a screen shows.
struct Element {
  enum class Kind {
    /// In the bar at the top.
    back,
    searchIcon,
    /// On the page, from the top to the bottom. Two cards that follow each other share a line.
    searchField,
    heading,
    paragraph,
    card,
    item,
    row,
    field,
    toggle,
    slider,
    picture,
    notice,
    /// At the foot of the page.
    amount,
    button,
    roundButton,
    /// In the bar at the bottom.
    tab,
    /// In a dialog over the page, which the first of them opens.
    dialog,
    dialogField,
    dialogButton,
    /// On the phone's own screen.
    appIcon,
  };

  Kind kind = Kind::row;
  std::string label = {};
  /// A price, a value, what was typed into a field.
  std::string detail = {};
  /// The one of its kind that stands out: a field in use, a toggle that is on, a row that is
  /// chosen, the total of a bill, the button that leads on, a slider that was moved.
  bool strong = false;
  bool enabled = true;
  /// The button under a row that was swiped aside.
  std::string buttonUnder = {};

  [[nodiscard]] bool takesText() const {
    return kind == Kind::field || kind == Kind::searchField || kind == Kind::dialogField;
  }
};

/// What a phone shows at a moment.
struct Screen {
  bool isAndroid = false;
  std::string appName;
  /// As in "9:41".
  std::string time;
  std::string title;
  std::vector<Element> elements;
  /// Whether the page is moved so that the target is in sight.
  bool scrolled = false;
  /// The element that is going to be touched or looked at.
  std::optional<std::size_t> target;

  [[nodiscard]] bool has(Element::Kind kind) const {
    return std::ranges::find(elements, kind, &Element::kind) != elements.end();
  }
};

}  // namespace corvane::standin
