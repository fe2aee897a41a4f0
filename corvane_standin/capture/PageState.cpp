#include "corvane_standin/capture/PageState.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;

Element* elementOf(Screen& screen, const std::optional<Target>& target) {
  const bool isElement = target && target->part == Target::Part::element;
  return isElement ? &screen.elements[target->index] : nullptr;
}

bool takesText(const Element& element) {
  return element.kind == Kind::field || element.kind == Kind::searchField;
}

void leaveFields(Screen& screen) {
  screen.keyboard = false;
  for (auto& element : screen.elements) {
    if (takesText(element)) element.strong = false;
  }
}

void enterField(Screen& screen, Element& field) {
  leaveFields(screen);
  field.strong = true;
  screen.keyboard = true;
}

bool isSecret(const Element& field) {
  const std::string label = asciiLowercase(field.label);
  return label.find("pass") != std::string::npos || label.find("pin") != std::string::npos;
}

void type(Screen& screen, const std::string& text) {
  if (screen.dialog && screen.dialog->field) {
    screen.dialog->field = text;
    return;
  }
  auto& elements = screen.elements;
  auto field = std::find_if(elements.begin(), elements.end(), [](const Element& element) {
    return takesText(element) && element.strong;
  });
  if (field == elements.end()) field = std::find_if(elements.begin(), elements.end(), takesText);
  if (field == elements.end()) {
    field = elements.insert(elements.end(), {.kind = Kind::field, .label = "Text"});
  }
  enterField(screen, *field);
  field->detail.clear();
  if (!isSecret(*field)) field->detail = text;
  for (std::size_t i = 0; isSecret(*field) && i < countCharacters(text); ++i) field->detail += "•";
}

/// Leaves the rows that have in them what was searched for, if there are any.
void showFound(Screen& screen) {
  auto& elements = screen.elements;
  const auto field = std::find_if(elements.begin(), elements.end(), [](const Element& element) {
    return element.kind == Kind::searchField;
  });
  if (field == elements.end() || field->detail.empty()) return;
  const std::string wanted = asciiLowercase(field->detail);
  const auto isOther = [&wanted](const Element& element) {
    return element.kind == Kind::row &&
           asciiLowercase(element.label).find(wanted) == std::string::npos;
  };
  const auto rows = std::count_if(elements.begin(), elements.end(),
                                  [](const Element& element) { return element.kind == Kind::row; });
  if (std::count_if(elements.begin(), elements.end(), isOther) < rows) {
    std::erase_if(elements, isOther);
  }
}

/// Stands in for what a building block types.
void fillIn(Screen& screen) {
  constexpr std::array<std::string_view, 4> samples{"Ada Lind", "12 Harbour Street", "Northport",
                                                    "48010"};
  std::size_t next = 0;
  for (auto& element : screen.elements) {
    if (element.kind == Kind::field && element.detail.empty()) {
      element.detail = samples[next++ % samples.size()];
    }
  }
}

/// The first number in a text, e.g. of "Wait 5 seconds".
int numberIn(const std::string& text) {
  int number = 0;
  const auto digit = text.find_first_of("0123456789");
  if (digit != std::string::npos) {
    std::from_chars(text.data() + digit, text.data() + text.size(), number);
  }
  return number;
}

void letTimePass(Screen& screen, int seconds) {
  for (auto& element : screen.elements) {
    if (element.kind != Kind::map) continue;
    const std::string rest = std::to_string(seconds % 60);
    element.detail = std::to_string(seconds / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
  }
}

}  // namespace

void applyStep(Screen& screen, const StepWords& step, const std::optional<Target>& target,
               const std::string& underRow) {
  Element* element = elementOf(screen, target);
  switch (step.type().value_or(InteractionType::visualAssert)) {
    case InteractionType::tap:
      if (element && takesText(*element)) enterField(screen, *element);
      if (element && element->kind == Kind::toggle) element->strong = !element->strong;
      return;
    case InteractionType::input:
      return type(screen, step.description());
    case InteractionType::scroll:
      screen.scrolled = !step.speaksOf({"up"});
      return;
    case InteractionType::drag:
      if (element && element->kind == Kind::slider) {
        element->share = 0.5;
        element->detail = "0 – 30";
      } else if (element && element->kind == Kind::row) {
        element->swipeAction = underRow;
      }
      return;
    case InteractionType::builtIn:
      if (step.speaksOf({"return", "enter", "keyboard"})) {
        leaveFields(screen);
        showFound(screen);
      }
      return;
    case InteractionType::delay:
      return letTimePass(screen, numberIn(step.description()));
    case InteractionType::userDefined:
      return fillIn(screen);
    case InteractionType::visualAssert:
    case InteractionType::waitToLoad:
    case InteractionType::runTest:
    case InteractionType::reuseSteps:
      return;
  }
}

std::string buttonUnderRow(const std::vector<StepWords>& steps, const PageSteps& page) {
  bool isSwiped = false;
  for (std::size_t i = page.first; i < page.end; ++i) {
    isSwiped |= steps[i].is(InteractionType::drag) && !steps[i].speaksOf({"handle", "slider"});
    if (!isSwiped || !steps[i].is(InteractionType::tap) || steps[i].named().empty()) continue;
    const std::string& label = steps[i].named().front().label;
    const std::string lower = asciiLowercase(label);
    for (const std::string_view verb : {"remove", "delete", "archive", "edit"}) {
      if (lower.starts_with(verb)) return label;
    }
  }
  return isSwiped ? "Remove" : std::string();
}

}  // namespace corvane::standin
