#include "corvane_standin/capture/ScreenStory.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <utility>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/capture/Pages.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;

bool isInside(std::string_view whole, std::string_view part) {
  return asciiLowercase(whole).find(asciiLowercase(part)) != std::string::npos;
}

bool isSame(std::string_view a, std::string_view b) {
  return asciiLowercase(a) == asciiLowercase(b);
}

/// What a step that healed found in the place of what it looked for, when the outcome tells.
std::optional<std::string> foundInstead(const TestOutcome& outcome) {
  constexpr std::string_view lead = " as \"";
  const std::string reason = outcome.failureReason.value_or("");
  const auto start = reason.find(lead);
  if (outcome.kind != TestOutcome::Kind::healed || start == reason.npos) return std::nullopt;
  const auto begin = start + lead.size();
  return reason.substr(begin, reason.find('"', begin) - begin);
}

/// Tells a test step by step: `screen` is what the phone shows.
class Teller {
 public:
  Teller(const PlannedTest& test, const std::vector<StepWords>& steps, const App& app,
         Screen firstScreen)
      : test(test), steps(steps), app(app), screen(std::move(firstScreen)) {
    values = {{"app", screen.appName}, {"tapped", ""}, {"typed", ""}, {"chosen", "Kilometres"}};
  }

  std::vector<Screen> tell() {
    open(app.pages.front());
    for (std::size_t i = 0; i < steps.size(); ++i) {
      prepare(i);
      const auto subject = subjectOf(steps[i]);
      screens.push_back(screen);
      // What is to be scrolled to is not in sight yet.
      if (steps[i].act != ScreenAct::scroll) screens.back().target = subject;
      Element* const element = subject ? &screen.elements[*subject] : nullptr;
      const Page* const next = pageAfter(steps[i], element);
      take(i, element);
      if (next) open(*next);
    }
    screens.push_back(std::move(screen));
    return std::move(screens);
  }

 private:
  void open(const Page& page) {
    closeDialog();
    leaveFields();
    if (page.parts.front().kind != Kind::dialog) {
      // The tabs stay, and what a test calls a tab is one.
      std::erase_if(screen.elements, [](const Element& each) { return each.kind != Kind::tab; });
      const bool isHomeScreen = &page == &app.pages.back();
      if (isHomeScreen) screen.elements.clear();
      if (!isHomeScreen && screen.elements.empty()) addAll(app.tabs);
      screen.scrolled = false;
      screen.title = substituteParameters(page.title, values);
      const std::string tab(&page == &app.pages.front() ? app.tabs.front().label : screen.title);
      select(Kind::tab, tab);
    }
    addAll(page.parts);
  }

  void addAll(std::span<const PagePart> parts) {
    const bool findsDefect = test.outcome.kind == TestOutcome::Kind::failed;
    for (const auto& part : parts) {
      const auto detail = findsDefect && !part.defect.empty() ? part.defect : part.detail;
      Element element{part.kind, substituteParameters(part.label, values),
                      substituteParameters(detail, values), part.strong};
      if (element.kind == Kind::row && element.label == values["chosen"]) element.strong = true;
      std::ranges::move(itemsFor(std::move(element)), std::back_inserter(screen.elements));
    }
  }

  /// Sees to it that what a step names is on the screen, or is not when the step fails by that.
  void prepare(std::size_t i) {
    const StepWords& step = steps[i];
    const bool isMissing = fails(i, "missing found");
    for (const auto& part : step.parts) {
      const bool isTitle = step.act == ScreenAct::look && isInside(screen.title, part.label);
      if (isMissing) {
        std::erase_if(screen.elements,
                      [&](const Element& e) { return isSame(e.label, part.label); });
      } else if (!isTitle && !placeOf(part, step.act)) {
        add(part, step.act);
      }
    }
    if (step.act == ScreenAct::type && std::ranges::none_of(screen.elements, &Element::takesText)) {
      screen.elements.push_back({Kind::field, "Text"});
    }
    const auto subject = subjectOf(step);
    if (subject && fails(i, "grey gray disabled")) screen.elements[*subject].enabled = false;
  }

  /// Whether a step fails and the reason, or what stands for it, has one of `words` in it.
  [[nodiscard]] bool fails(std::size_t step, std::string_view words) const {
    return step == test.turningStep && test.outcome.kind == TestOutcome::Kind::failed &&
           StepWords("", test.outcome.failureReason.value_or("missing")).speakOf(words);
  }

  /// Adds it where it is in sight, unless that is yet to be reached.
  void add(const NamedPart& part, ScreenAct act) {
    const Kind unsaid = act == ScreenAct::tap      ? Kind::button
                        : act == ScreenAct::scroll ? Kind::row
                                                   : Kind::paragraph;
    const Kind kind = part.kind.value_or(unsaid);
    const bool isLast = kind == Kind::tab || act == ScreenAct::scroll;
    screen.elements.insert(isLast ? screen.elements.end() : screen.elements.begin(),
                           {kind, part.label, {}, kind == Kind::button});
  }

  /// The last element that is wanted: what lies over others comes last.
  template <class Predicate>
  [[nodiscard]] std::optional<std::size_t> last(Predicate isWanted) const {
    const auto found = std::find_if(screen.elements.rbegin(), screen.elements.rend(), isWanted);
    if (found == screen.elements.rend()) return std::nullopt;
    return static_cast<std::size_t>(screen.elements.rend() - found) - 1;
  }

  /// The element that a step names; one that looks may name a piece of a text.
  [[nodiscard]] std::optional<std::size_t> placeOf(const NamedPart& part, ScreenAct act) const {
    const std::string& label = part.label;
    const auto found = last(
        [&](const Element& e) { return isSame(e.label, label) || isSame(e.buttonUnder, label); });
    if (found || act != ScreenAct::look) return found;
    return last(
        [&](const Element& e) { return isInside(e.label, label) || isInside(e.detail, label); });
  }

  /// The element that a step is about.
  [[nodiscard]] std::optional<std::size_t> subjectOf(const StepWords& step) const {
    if (step.act == ScreenAct::type) {
      const auto inUse = last([](const Element& e) { return e.takesText() && e.strong; });
      return inUse ? inUse : last([](const Element& e) { return e.takesText(); });
    }
    return step.parts.empty() ? std::nullopt : placeOf(step.parts.front(), step.act);
  }

  /// The page that a step opens; null when the one in sight stays.
  [[nodiscard]] const Page* pageAfter(const StepWords& step, const Element* subject) const {
    switch (step.act) {
      case ScreenAct::command:
      case ScreenAct::fillForm:
      case ScreenAct::otherSteps:
        if (step.speakOf("return enter") && screen.has(Kind::searchField)) {
          return pageWhere([](const Page& page) { return page.opener == Kind::searchField; });
        }
        return pageWhere([&step](const Page& page) { return step.speakOf(page.words); });
      case ScreenAct::tap:
        return subject ? pageOpenedBy(*subject, step.parts.front().label) : nullptr;
      default:
        return nullptr;
    }
  }

  [[nodiscard]] const Page* pageOpenedBy(const Element& tapped, std::string_view label) const {
    if (tapped.takesText() || isChoice(tapped) || !tapped.enabled) return nullptr;
    const std::string wanted = asciiLowercase(label) + " ";
    const auto* const named = pageWhere([&wanted](const Page& page) {
      return std::ranges::any_of(split(page.labels, ","), [&wanted](std::string_view front) {
        return wanted.starts_with(std::string(front) + " ");
      });
    });
    return named ? named
                 : pageWhere([&tapped](const Page& page) { return page.opener == tapped.kind; });
  }

  template <class Predicate>
  [[nodiscard]] const Page* pageWhere(Predicate isWanted) const {
    const auto found = std::ranges::find_if(app.pages, isWanted);
    return found == app.pages.end() ? nullptr : &*found;
  }

  /// Whether it is one of several rows, one of which is chosen.
  [[nodiscard]] bool isChoice(const Element& element) const {
    return element.kind == Kind::row && std::ranges::any_of(screen.elements, [](const Element& e) {
             return e.kind == Kind::row && e.strong;
           });
  }

  void take(std::size_t i, Element* subject) {
    const StepWords& step = steps[i];
    if (step.act == ScreenAct::scroll) screen.scrolled = !step.speakOf("up");
    if (step.act == ScreenAct::command) leaveFields();
    if (!subject) return;
    if (step.act == ScreenAct::tap) touch(*subject);
    if (step.act == ScreenAct::type) type(*subject, step.description);
    if (step.act != ScreenAct::drag) return;
    subject->moved = true;
    const bool isTapNext = i + 1 < steps.size() && steps[i + 1].act == ScreenAct::tap;
    if (subject->kind == Kind::slider) {
      subject->detail = "0 – 30";
    } else if (isTapNext && !steps[i + 1].parts.empty()) {
      subject->buttonUnder = steps[i + 1].parts.front().label;
    }
  }

  void touch(Element& element) {
    values["tapped"] = element.label;
    values["price"] = element.detail;
    if (element.takesText()) {
      leaveFields();
      element.strong = true;
    } else if (element.kind == Kind::toggle) {
      element.strong = !element.strong;
    } else if (element.kind == Kind::tab || isChoice(element)) {
      if (element.kind == Kind::row) values["chosen"] = element.label;
      select(element.kind, values["tapped"]);
    } else if (element.kind == Kind::dialogButton) {
      closeDialog();
    }
  }

  void select(Kind kind, std::string_view label) {
    const auto isMeant = [&](const Element& e) { return e.kind == kind && e.label == label; };
    if (std::ranges::none_of(screen.elements, isMeant)) return;
    for (auto& element : screen.elements) {
      if (element.kind == kind) element.strong = element.label == label;
    }
  }

  void type(Element& field, const std::string& text) {
    touch(field);
    field.detail.clear();
    if (isInside(field.label, "password")) {
      for (std::size_t i = 0; i < countCharacters(text); ++i) field.detail += "•";
    } else {
      field.detail = values["typed"] = text;
    }
  }

  void leaveFields() {
    for (auto& element : screen.elements) {
      if (element.takesText()) element.strong = false;
    }
  }

  void closeDialog() {
    std::erase_if(screen.elements, [](const Element& element) {
      return element.kind == Kind::dialog || element.kind == Kind::dialogField ||
             element.kind == Kind::dialogButton;
    });
  }

  const PlannedTest& test;
  const std::vector<StepWords>& steps;
  const App& app;
  Screen screen;
  std::map<std::string, std::string> values;
  std::vector<Screen> screens;
};

const App& appCalled(std::string_view name) {
  const auto known = apps();
  const auto found = std::ranges::find_if(
      known, [name](const App& app) { return StepWords("", name).speakOf(app.words); });
  return found == known.end() ? known.back() : *found;
}

Touch drag(Point from, Point to) {
  // Files need no more than this.
  const auto rounded = [](double share) { return std::round(share * 10'000) / 10'000; };
  return {rounded(from.x), rounded(from.y), rounded(to.x), rounded(to.y)};
}

Touch dragTouch(const StepWords& step, Point from) {
  if (step.speakOf("handle slider middle")) return drag(from, {0.5, from.y});
  if (step.speakOf("left")) return drag({0.84, from.y}, {0.1, from.y});
  return drag({0.16, from.y}, {0.9, from.y});
}

}  // namespace

ScreenStory::ScreenStory(const PlannedTest& test, const std::string& appName,
                         const std::string& platform) {
  for (const auto& step : test.steps) steps.emplace_back(step.type, step.description);
  if (const auto instead = foundInstead(test.outcome); instead && test.turningStep < steps.size()) {
    for (auto& part : steps[test.turningStep].parts) part.label = *instead;
  }
  Screen first;
  first.phone = platform == "android" ? Screen::Phone::android : Screen::Phone::ios;
  first.appName = appName;
  screens = Teller(test, steps, appCalled(appName), std::move(first)).tell();
}

std::vector<Touch> touchesOf(const StepWords& step, const std::optional<Rect>& target) {
  if (step.act == ScreenAct::scroll) {
    // A finger goes the other way than what comes into sight.
    const double from = step.speakOf("up") ? 0.34 : 0.74;
    return {drag({0.5, from}, {0.5, 1.08 - from})};
  }
  if (!target) return {};
  const Point at = target->centre();
  if (step.act == ScreenAct::drag) return {dragTouch(step, at)};
  if (step.act != ScreenAct::tap) return {};
  Touch touch = drag(at, at);
  touch.endX = touch.endY = std::nullopt;
  return {touch};
}

}  // namespace corvane::standin
