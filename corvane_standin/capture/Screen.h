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

struct Size {
  double width = 0;
  double height = 0;
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
  [[nodiscard]] Rect inset(double by) const { return inset(by, by); }
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
    goods,
    walk,
    row,
    field,
    toggle,
    slider,
    hero,
    map,
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
  /// The button under a row, which comes out when the row is swiped aside.
  std::string buttonUnder = {};
  /// Whether a row was swiped aside or the handle of a slider was dragged.
  bool moved = false;

  [[nodiscard]] bool takesText() const {
    return kind == Kind::field || kind == Kind::searchField || kind == Kind::dialogField;
  }
};

/// What a phone shows at a moment.
struct Screen {
  enum class Phone { ios, android };

  Phone phone = Phone::ios;
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
  /// Whether the keyboard is out, which it is while a field is in use.
  [[nodiscard]] bool hasKeyboard() const {
    return std::ranges::any_of(elements,
                               [](const Element& e) { return e.takesText() && e.strong; });
  }
};

}  // namespace corvane::standin
