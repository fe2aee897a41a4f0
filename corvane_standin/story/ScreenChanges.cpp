#include "corvane_standin/story/StoryPages.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;
using Named = NamedPart::Kind;
using Part = Target::Part;

bool isSame(std::string_view a, std::string_view b) {
  return asciiLowercase(a) == asciiLowercase(b);
}

bool isInside(std::string_view whole, std::string_view part) {
  return asciiLowercase(whole).find(asciiLowercase(part)) != std::string::npos;
}

/// The first of `items` that `isWanted` accepts.
template <class Items, class Predicate>
std::optional<std::size_t> indexWhere(const Items& items, Predicate isWanted) {
  const auto found = std::find_if(items.begin(), items.end(), isWanted);
  if (found == items.end()) return std::nullopt;
  return static_cast<std::size_t>(found - items.begin());
}

std::optional<std::size_t> findLabel(const std::vector<std::string>& labels,
                                     std::string_view label) {
  return indexWhere(labels, [label](const auto& each) { return isSame(each, label); });
}

auto isOf(Kind kind) {
  return [kind](const Element& element) { return element.kind == kind; };
}

bool shows(const Screen& screen, std::string_view text) {
  return isInside(screen.title, text) || findLabel(screen.tabs, text) ||
         std::ranges::any_of(screen.elements, [text](const Element& element) {
           return isInside(element.label, text) || isInside(element.detail, text);
         });
}

/// Puts an element above the others of its kind, or at the end when it is the first, unless one of
/// its label is there.
void addAbove(Screen& screen, Element element) {
  if (findElement(screen, element.label)) return;
  const auto first = std::ranges::find_if(screen.elements, isOf(element.kind));
  screen.elements.insert(first, std::move(element));
}

void addButton(Screen& screen, const NamedPart& part, const StepWords& step) {
  if (screen.dialog) {
    auto& buttons = screen.dialog->buttons;
    if (!findLabel(buttons, part.label)) buttons.push_back(part.label);
    return;
  }
  // What leads on stands out, and only one button does.
  for (auto& element : screen.elements) {
    if (element.kind == Kind::button) element.strong = false;
  }
  if (const auto known = findElement(screen, part.label, Kind::button)) {
    screen.elements[*known].strong = true;
    return;
  }
  const bool isRound = step.speaksOf({"round", "floating"});
  screen.elements.push_back({isRound ? Kind::roundButton : Kind::button, part.label, {}, true});
}

void addRow(Screen& screen, const NamedPart& part, PageKind page) {
  Element row{Kind::row, part.label};
  if (page == PageKind::cart || page == PageKind::list || page == PageKind::search) {
    row = goodsElement(Kind::row, part.label);
  } else if (page == PageKind::walks) {
    row = {Kind::row, part.label, "0.4 km", false, Element::Picture::route};
  }
  if (page != PageKind::choice) return addAbove(screen, std::move(row));
  if (!findElement(screen, part.label)) screen.elements.push_back(std::move(row));
}

void addUnsaid(Screen& screen, const NamedPart& part, const StepWords& step, PageKind page) {
  if (step.is(ScreenAct::tap)) {
    if (findElement(screen, part.label) || findLabel(screen.tabs, part.label)) return;
    beginsWithVerb(part.label) ? addButton(screen, part, step) : addRow(screen, part, page);
  } else if (!shows(screen, part.label)) {
    step.is(ScreenAct::scroll) || page == PageKind::list || page == PageKind::cart
        ? addRow(screen, part, page)
        : screen.elements.push_back({Kind::paragraph, part.label});
  }
}

void leaveFields(Screen& screen) {
  screen.keyboard = false;
  for (auto& element : screen.elements) {
    if (element.takesText()) element.strong = false;
  }
}

void enterField(Screen& screen, Element& field) {
  leaveFields(screen);
  field.strong = true;
  screen.keyboard = true;
}

void type(Screen& screen, const std::string& text) {
  if (screen.dialog && screen.dialog->field) {
    screen.dialog->field = text;
    return;
  }
  auto& elements = screen.elements;
  auto field = std::ranges::find_if(
      elements, [](const Element& each) { return each.takesText() && each.strong; });
  if (field == elements.end()) field = std::ranges::find_if(elements, &Element::takesText);
  if (field == elements.end()) field = elements.insert(elements.end(), {Kind::field, "Text"});
  enterField(screen, *field);
  const bool isSecret = isInside(field->label, "pass") || isInside(field->label, "pin");
  field->detail = isSecret ? "" : text;
  for (std::size_t i = 0; isSecret && i < countCharacters(text); ++i) field->detail += "•";
}

/// Leaves the rows that have in them what was searched for, if there are any.
void showFound(Screen& screen) {
  auto& elements = screen.elements;
  const auto field = std::ranges::find_if(elements, isOf(Kind::searchField));
  if (field == elements.end() || field->detail.empty()) return;
  const auto isOther = [wanted = field->detail](const Element& element) {
    return element.kind == Kind::row && !isInside(element.label, wanted);
  };
  const auto rows = std::ranges::count_if(elements, isOf(Kind::row));
  if (std::ranges::count_if(elements, isOther) < rows) std::erase_if(elements, isOther);
}

/// Stands in for what a building block types.
void fillIn(Screen& screen) {
  constexpr std::array samples{"Ada Lind", "12 Harbour Street", "Northport", "48010"};
  std::size_t next = 0;
  for (auto& element : screen.elements) {
    if (element.kind == Kind::field && element.detail.empty()) {
      element.detail = samples[next++ % samples.size()];
    }
  }
}

/// Lets the seconds pass that a text such as "Wait 5 seconds" speaks of.
void letTimePass(Screen& screen, const std::string& text) {
  int seconds = 0;
  const auto digit = std::min(text.find_first_of("0123456789"), text.size());
  std::from_chars(text.data() + digit, text.data() + text.size(), seconds);
  for (auto& element : screen.elements) {
    if (element.kind != Kind::map) continue;
    const std::string rest = std::to_string(seconds % 60);
    element.detail = std::to_string(seconds / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
  }
}

void touch(Screen& screen, Element& element) {
  if (element.takesText()) enterField(screen, element);
  if (element.kind == Kind::toggle) element.strong = !element.strong;
}

void pull(Element& element, const std::string& underRow) {
  if (element.kind == Kind::row) element.swipeAction = underRow;
  if (element.kind != Kind::slider) return;
  element.share = 0.5;
  element.detail = "0 – 30";
}

}  // namespace

std::optional<std::size_t> findElement(const Screen& screen, std::string_view label,
                                       std::optional<Element::Kind> kind) {
  return indexWhere(screen.elements, [&](const Element& element) {
    return isSame(element.label, label) && (!kind || element.kind == *kind);
  });
}

void addNamedPart(Screen& screen, const NamedPart& part, const StepWords& step, PageKind page) {
  auto& elements = screen.elements;
  switch (part.kind) {
    case Named::button:
      return addButton(screen, part, step);
    case Named::field:
      if (page != PageKind::search && !findElement(screen, part.label)) {
        elements.push_back({Kind::field, part.label});
      }
      return;
    case Named::product: {
      const bool inGrid = std::ranges::any_of(elements, isOf(Kind::card));
      return addAbove(screen, goodsElement(inGrid ? Kind::card : Kind::row, part.label));
    }
    case Named::row:
      return addRow(screen, part, page);
    case Named::slider:
      return addAbove(
          screen, {.kind = Kind::slider, .label = part.label, .detail = "0 – 60", .share = 0.92});
    case Named::toggle:
      return addAbove(screen, {Kind::toggle, part.label});
    case Named::text:
      if (!shows(screen, part.label)) {
        elements.insert(elements.begin(), {Kind::heading, part.label});
      }
      return;
    case Named::searchIcon:
      screen.hasSearchIcon = true;
      return;
    case Named::unsaid:
      return addUnsaid(screen, part, step, page);
    case Named::tab:
    case Named::page:
      return;
  }
}

std::optional<Target> targetOf(const Screen& screen, const NamedPart& part) {
  const auto at = [](Part where, std::optional<std::size_t> index) {
    return index ? std::optional(Target{where, *index}) : std::nullopt;
  };
  if (screen.place == Screen::Place::homeScreen) return Target{Part::appIcon};
  if (part.kind == Named::searchIcon) return Target{Part::searchIcon};
  const auto asTab = at(Part::tab, findLabel(screen.tabs, part.label));
  if (part.kind == Named::tab) return asTab;
  std::optional<Target> found;
  if (screen.dialog) found = at(Part::dialogButton, findLabel(screen.dialog->buttons, part.label));
  const auto orElement = [&](std::optional<std::size_t> index) {
    if (!found) found = at(Part::element, index);
  };
  const bool isField = part.kind == Named::field;
  if (isField) orElement(findElement(screen, part.label, Kind::field));
  // What was swiped aside may read like what lies under it.
  orElement(findElement(screen, part.label, Kind::button));
  orElement(findElement(screen, part.label, Kind::roundButton));
  orElement(indexWhere(screen.elements, [&part](const Element& each) {
    return isSame(each.swipeAction, part.label);
  }));
  orElement(findElement(screen, part.label));
  if (isField) orElement(indexWhere(screen.elements, isOf(Kind::searchField)));
  return found ? found : asTab;
}

void applyStep(Screen& screen, const StepWords& step, const std::optional<Target>& target,
               const std::string& underRow) {
  const bool isElement = target && target->part == Part::element;
  Element* const element = isElement ? &screen.elements[target->index] : nullptr;
  switch (step.act()) {
    case ScreenAct::tap:
      if (element) touch(screen, *element);
      return;
    case ScreenAct::type:
      return type(screen, step.description());
    case ScreenAct::scroll:
      screen.scrolled = !step.speaksOf({"up"});
      return;
    case ScreenAct::drag:
      if (element) pull(*element, underRow);
      return;
    case ScreenAct::command:
      if (!step.speaksOf({"return", "enter", "keyboard"})) return;
      leaveFields(screen);
      return showFound(screen);
    case ScreenAct::wait:
      return letTimePass(screen, step.description());
    case ScreenAct::fillForm:
      return fillIn(screen);
    case ScreenAct::look:
    case ScreenAct::otherSteps:
      return;
  }
}

}  // namespace corvane::standin
