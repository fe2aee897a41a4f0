#pragma once

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

/// One piece of a page, from the top to the bottom.
struct Element {
  enum class Kind {
    searchField,
    heading,
    paragraph,
    /// A product in a grid; two of them that follow each other share a line.
    card,
    row,
    field,
    toggle,
    slider,
    /// A line of a bill.
    amount,
    /// A large picture of a product.
    hero,
    map,
    /// A sign with a text below, in the middle of an otherwise empty page.
    notice,
    button,
    roundButton,
  };
  /// What is pictured in front of a row.
  enum class Picture { none, goods, route };

  Kind kind = Kind::row;
  std::string label = {};
  /// A price, a value, what was typed into a field.
  std::string detail = {};
  /// The one of its kind that stands out: a field in use, a toggle that is on, the total of a bill,
  /// the button that leads on, a notice of success.
  bool strong = false;
  Picture picture = Picture::none;
  bool enabled = true;
  /// The button that a row uncovers when it is swiped aside; empty while it is not.
  std::string swipeAction = {};
  /// Where the handle of a slider stands, 0 to 1.
  double share = 0;

  [[nodiscard]] bool takesText() const { return kind == Kind::field || kind == Kind::searchField; }
};

struct Dialog {
  std::string title;
  std::string text;
  /// A field to type into, with what is in it.
  std::optional<std::string> field;
  /// One or two; the last one leads on.
  std::vector<std::string> buttons;
};

/// A part of a screen that can be touched.
struct Target {
  enum class Part { element, tab, dialogField, dialogButton, searchIcon, appIcon, back };

  Part part = Part::element;
  /// Which of the elements, tabs or buttons.
  std::size_t index = 0;
};

/// What a phone shows at a moment.
struct Screen {
  enum class Phone { ios, android };
  enum class Place { app, homeScreen };

  Phone phone = Phone::ios;
  Place place = Place::app;
  std::string appName;
  /// As in "9:41".
  std::string time;
  std::string title;
  bool canGoBack = false;
  bool hasSearchIcon = false;
  std::vector<Element> elements;
  std::vector<std::string> tabs;
  std::size_t selectedTab = 0;
  std::optional<Dialog> dialog;
  bool keyboard = false;
  /// Whether the page is moved so that the target is in sight.
  bool scrolled = false;
  std::optional<Target> target;
};

}  // namespace corvane::standin
