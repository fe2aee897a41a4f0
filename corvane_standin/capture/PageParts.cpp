#include "corvane_standin/capture/PageParts.h"

#include <algorithm>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/capture/PageContents.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;
using Named = NamedPart::Kind;

bool isSame(std::string_view a, std::string_view b) {
  return asciiLowercase(a) == asciiLowercase(b);
}

bool isInside(std::string_view whole, std::string_view part) {
  return asciiLowercase(whole).find(asciiLowercase(part)) != std::string::npos;
}

std::optional<std::size_t> findLabel(const std::vector<std::string>& labels,
                                     std::string_view label) {
  const auto found = std::find_if(labels.begin(), labels.end(),
                                  [label](const auto& each) { return isSame(each, label); });
  if (found == labels.end()) return std::nullopt;
  return static_cast<std::size_t>(found - labels.begin());
}

bool shows(const Screen& screen, std::string_view text) {
  const auto& elements = screen.elements;
  return isInside(screen.title, text) || findLabel(screen.tabs, text) ||
         std::any_of(elements.begin(), elements.end(), [text](const Element& element) {
           return isInside(element.label, text) || isInside(element.detail, text);
         });
}

/// Puts an element above the others of its kind, or at the end when it is the first.
void insertAbove(Screen& screen, Element element) {
  auto& elements = screen.elements;
  const auto first =
      std::find_if(elements.begin(), elements.end(),
                   [&element](const Element& each) { return each.kind == element.kind; });
  elements.insert(first, std::move(element));
}

void addButton(Screen& screen, const NamedPart& part, const StepWords& step) {
  if (screen.dialog) {
    if (!findLabel(screen.dialog->buttons, part.label)) {
      screen.dialog->buttons.push_back(part.label);
    }
    return;
  }
  const bool isRound = step.speaksOf({"round", "floating"});
  // What leads on stands out, and only one button does.
  for (auto& element : screen.elements) {
    if (element.kind == Kind::button) element.strong = false;
  }
  if (const auto known = findElement(screen, part.label, Kind::button)) {
    screen.elements[*known].strong = true;
    return;
  }
  screen.elements.push_back(
      {.kind = isRound ? Kind::roundButton : Kind::button, .label = part.label, .strong = true});
}

void addRow(Screen& screen, const NamedPart& part, PageKind page) {
  if (findElement(screen, part.label)) return;
  Element row{.kind = Kind::row, .label = part.label};
  if (page == PageKind::cart || page == PageKind::list || page == PageKind::search) {
    row = goodsElement(Kind::row, part.label);
  } else if (page == PageKind::walks) {
    row.picture = Element::Picture::route;
    row.detail = "0.4 km";
  }
  page == PageKind::choice ? screen.elements.push_back(std::move(row))
                           : insertAbove(screen, std::move(row));
}

void addProduct(Screen& screen, const NamedPart& part) {
  if (findElement(screen, part.label)) return;
  const bool inGrid = std::any_of(screen.elements.begin(), screen.elements.end(),
                                  [](const Element& each) { return each.kind == Kind::card; });
  insertAbove(screen, goodsElement(inGrid ? Kind::card : Kind::row, part.label));
}

void addUnsaid(Screen& screen, const NamedPart& part, const StepWords& step, PageKind page) {
  if (step.is(InteractionType::tap)) {
    if (findElement(screen, part.label) || findLabel(screen.tabs, part.label)) return;
    beginsWithVerb(part.label) ? addButton(screen, part, step) : addRow(screen, part, page);
  } else if (!shows(screen, part.label)) {
    step.is(InteractionType::scroll) || page == PageKind::list || page == PageKind::cart
        ? addRow(screen, part, page)
        : screen.elements.push_back({.kind = Kind::paragraph, .label = part.label});
  }
}

}  // namespace

std::optional<std::size_t> findElement(const Screen& screen, std::string_view label,
                                       std::optional<Element::Kind> kind) {
  const auto& elements = screen.elements;
  const auto found = std::find_if(elements.begin(), elements.end(), [&](const Element& element) {
    return isSame(element.label, label) && (!kind || element.kind == *kind);
  });
  if (found == elements.end()) return std::nullopt;
  return static_cast<std::size_t>(found - elements.begin());
}

void addNamedPart(Screen& screen, const NamedPart& part, const StepWords& step, PageKind page) {
  switch (part.kind) {
    case Named::button:
      return addButton(screen, part, step);
    case Named::field:
      if (page != PageKind::search && !findElement(screen, part.label)) {
        screen.elements.push_back({.kind = Kind::field, .label = part.label});
      }
      return;
    case Named::product:
      return addProduct(screen, part);
    case Named::row:
      return addRow(screen, part, page);
    case Named::slider:
      if (!findElement(screen, part.label)) {
        insertAbove(screen,
                    {.kind = Kind::slider, .label = part.label, .detail = "0 – 60", .share = 0.92});
      }
      return;
    case Named::toggle:
      if (!findElement(screen, part.label)) {
        insertAbove(screen, {.kind = Kind::toggle, .label = part.label});
      }
      return;
    case Named::text:
      if (!shows(screen, part.label)) {
        screen.elements.insert(screen.elements.begin(),
                               {.kind = Kind::heading, .label = part.label});
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
  using Part = Target::Part;
  if (screen.place == Screen::Place::homeScreen) return Target{Part::appIcon};
  if (part.kind == Named::searchIcon) return Target{Part::searchIcon};
  const auto asTab = findLabel(screen.tabs, part.label);
  if (part.kind == Named::tab) {
    return asTab ? std::optional(Target{Part::tab, *asTab}) : std::nullopt;
  }
  if (screen.dialog) {
    const auto asButton = findLabel(screen.dialog->buttons, part.label);
    if (asButton) return Target{Part::dialogButton, *asButton};
  }
  if (part.kind == Named::field) {
    if (const auto field = findElement(screen, part.label, Kind::field)) {
      return Target{Part::element, *field};
    }
  }
  // What was swiped aside may read like what lies under it.
  for (const auto kind : {Kind::button, Kind::roundButton}) {
    if (const auto button = findElement(screen, part.label, kind)) {
      return Target{Part::element, *button};
    }
  }
  const auto& elements = screen.elements;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (isSame(elements[i].swipeAction, part.label)) return Target{Part::element, i};
  }
  if (const auto element = findElement(screen, part.label)) return Target{Part::element, *element};
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (part.kind == Named::field && elements[i].kind == Kind::searchField) {
      return Target{Part::element, i};
    }
  }
  return asTab ? std::optional(Target{Part::tab, *asTab}) : std::nullopt;
}

}  // namespace corvane::standin
