#include "corvane_standin/capture/ScreenStory.h"

#include <algorithm>
#include <array>
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

bool isRow(Kind kind) {
  return kind == Kind::row || kind == Kind::goods || kind == Kind::walk;
}

/// How a failing step shows.
enum class Trouble { none, missing, greyedOut };

Trouble troubleOf(const TestOutcome& outcome) {
  if (outcome.kind != TestOutcome::Kind::failed) return Trouble::none;
  const std::string reason = asciiLowercase(outcome.failureReason.value_or("missing"));
  const auto says = [&reason](std::string_view words) { return isInside(reason, words); };
  if (says("grey") || says("gray") || says("disabled")) return Trouble::greyedOut;
  const bool isMissing = says("not on the screen") || says("not found") || says("missing");
  return isMissing ? Trouble::missing : Trouble::none;
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

/// Tells a test step by step: `screen` is what the phone shows, with all on it that is going to be
/// touched until the next page opens.
class Teller {
 public:
  Teller(const PlannedTest& test, const std::vector<StepWords>& steps, const App& app,
         Screen firstScreen)
      : test(test), steps(steps), app(app), screen(std::move(firstScreen)) {
    values = {{"app", screen.appName}, {"tapped", ""}, {"typed", ""}, {"time", "0 s"}};
    values["chosen"] = "Kilometres";
  }

  std::vector<Screen> tell() {
    const bool isClosed = !steps.empty() && pageByCommand(steps.front()) == &app.pages.front();
    open(isClosed ? app.pages.back() : app.pages.front());
    for (std::size_t i = 0; i < steps.size(); ++i) {
      addParts(i);
      const auto subject = subjectOf(steps[i]);
      const Page* const next = pageAfter(steps[i], subject);
      const bool closesDialog = subject && screen.elements[*subject].kind == Kind::dialogButton &&
                                steps[i].act == ScreenAct::tap;
      if (!next && !closesDialog) continue;
      takeSteps(i + 1);
      if (subject) {
        values["tapped"] = screen.elements[*subject].label;
        values["price"] = screen.elements[*subject].detail;
      }
      if (!next) closeDialog();
      if (next) open(*next);
    }
    takeSteps(steps.size());
    screens.push_back(std::move(screen));
    return std::move(screens);
  }

 private:
  void open(const Page& page) {
    const bool isDialog = page.parts.front().kind == Kind::dialog;
    closeDialog();
    leaveFields();
    if (!isDialog) {
      // The tabs stay, and what a test calls a tab is one.
      std::erase_if(screen.elements, [](const Element& each) { return each.kind != Kind::tab; });
      const bool isHomeScreen = &page == &app.pages.back();
      if (isHomeScreen) screen.elements.clear();
      if (!isHomeScreen && screen.elements.empty()) addAll(app.tabs);
      screen.scrolled = false;
      screen.title = page.title.empty() ? screen.appName : substituteParameters(page.title, values);
      const std::string tab(&page == &app.pages.front() ? app.tabs.front().label : screen.title);
      select(Kind::tab, tab);
    }
    addAll(page.parts);
  }

  void addAll(std::span<const PagePart> parts) {
    const bool findsDefect = test.outcome.kind == TestOutcome::Kind::failed;
    for (const auto& part : parts) {
      const bool isDefect = findsDefect && !part.defect.empty();
      Element element{part.kind, substituteParameters(part.label, values),
                      substituteParameters(isDefect ? part.defect : part.detail, values),
                      part.strong};
      if (element.kind == Kind::row && element.label == values["chosen"]) element.strong = true;
      std::ranges::move(itemsFor(std::move(element)), std::back_inserter(screen.elements));
    }
  }

  /// Sees to it that what a step names is on the screen.
  void addParts(std::size_t i) {
    const StepWords& step = steps[i];
    const bool isTurn = i == test.turningStep;
    const Trouble trouble = isTurn ? troubleOf(test.outcome) : Trouble::none;
    for (const auto& part : step.parts) {
      const bool isTitle = step.act == ScreenAct::look && isInside(screen.title, part.label);
      const bool isShown = isTitle || placeOf(part, step.act);
      if (trouble != Trouble::missing && !isShown) add(step, part);
    }
    if (step.act == ScreenAct::type && std::ranges::none_of(screen.elements, &Element::takesText)) {
      screen.elements.push_back({Kind::field, "Text"});
    }
    const auto subject = subjectOf(steps[i]);
    if (!subject) return;
    Element& element = screen.elements[*subject];
    if (trouble == Trouble::greyedOut) element.enabled = false;
    if (step.act == ScreenAct::drag && isRow(element.kind)) {
      const bool isTapped =
          i + 1 < steps.size() && steps[i + 1].act == ScreenAct::tap && !steps[i + 1].parts.empty();
      element.buttonUnder = isTapped ? steps[i + 1].parts.front().label : "Remove";
    }
    if (trouble == Trouble::missing) {
      screen.elements.erase(screen.elements.begin() + static_cast<std::ptrdiff_t>(*subject));
    }
  }

  /// Above the others of its kind, where it is in sight, else at the end.
  void add(const StepWords& step, const NamedPart& part) {
    const Kind ofTap = screen.has(Kind::dialog) ? Kind::dialogButton : Kind::button;
    const Kind unsaid = step.act == ScreenAct::tap      ? ofTap
                        : step.act == ScreenAct::scroll ? Kind::row
                                                        : Kind::paragraph;
    Kind kind = part.kind.value_or(unsaid);
    if (kind == Kind::button) kind = step.speakOf("round floating") ? Kind::roundButton : ofTap;
    const auto place = kind == Kind::dialogButton || kind == Kind::tab
                           ? screen.elements.end()
                           : std::ranges::find(screen.elements, kind, &Element::kind);
    const bool leadsOn = kind == Kind::button || kind == Kind::dialogButton;
    Element element{kind, part.label, {}, leadsOn};
    const auto items = itemsFor(element);
    if (isSame(items.front().label, part.label)) element.detail = items.front().detail;
    screen.elements.insert(place, std::move(element));
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
    const auto isNamed = [&](const Element& e) {
      return isSame(e.label, label) || isSame(e.buttonUnder, label);
    };
    auto found = last([&](const Element& e) { return isNamed(e) && part.kind == e.kind; });
    if (!found) found = last(isNamed);
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

  [[nodiscard]] const Page* pageByCommand(const StepWords& step) const {
    return pageWhere([&step](const Page& page) {
      return step.act == ScreenAct::command && step.speakOf(page.commands);
    });
  }

  /// The page that a step opens; null when the one in sight stays.
  [[nodiscard]] const Page* pageAfter(const StepWords& step,
                                      std::optional<std::size_t> subject) const {
    switch (step.act) {
      case ScreenAct::command:
        if (step.speakOf("return enter") && screen.has(Kind::searchField)) {
          return pageWhere([](const Page& page) { return page.opener == Kind::searchField; });
        }
        return pageByCommand(step);
      case ScreenAct::otherSteps:
        return pageWhere([&step](const Page& page) { return step.speakOf(page.otherSteps); });
      case ScreenAct::tap:
        return subject ? pageOpenedBy(screen.elements[*subject], step) : nullptr;
      default:
        return nullptr;
    }
  }

  [[nodiscard]] const Page* pageOpenedBy(const Element& tapped, const StepWords& step) const {
    const bool isSetting = tapped.takesText() || tapped.kind == Kind::toggle ||
                           tapped.kind == Kind::slider || isChoice(tapped);
    if (isSetting || !tapped.enabled) return nullptr;
    const std::string label = asciiLowercase(step.parts.front().label);
    const auto* const named = pageWhere([&label](const Page& page) {
      return std::ranges::any_of(split(page.labels, ","), [&label](std::string_view front) {
        return (label + " ").starts_with(std::string(front) + " ");
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

  /// Takes the steps before `end` that were not taken yet.
  void takeSteps(std::size_t end) {
    for (std::size_t i = screens.size(); i < end; ++i) {
      const auto subject = subjectOf(steps[i]);
      screens.push_back(screen);
      // What is to be scrolled to is not in sight yet.
      if (steps[i].act != ScreenAct::scroll) screens.back().target = subject;
      take(steps[i], subject ? &screen.elements[*subject] : nullptr);
    }
  }

  void take(const StepWords& step, Element* subject) {
    switch (step.act) {
      case ScreenAct::tap:
        if (subject) touch(*subject);
        return;
      case ScreenAct::type:
        if (subject) type(*subject, step.description);
        return;
      case ScreenAct::scroll:
        screen.scrolled = !step.speakOf("up");
        return;
      case ScreenAct::drag:
        if (subject) subject->moved = true;
        if (subject && subject->kind == Kind::slider) subject->detail = "0 – 30";
        return;
      case ScreenAct::command:
        return leaveFields();
      case ScreenAct::wait:
        return letTimePass(step.description);
      case ScreenAct::fillForm:
        return fillIn();
      case ScreenAct::look:
      case ScreenAct::otherSteps:
        return;
    }
  }

  void touch(Element& element) {
    if (element.takesText()) {
      leaveFields();
      element.strong = true;
    } else if (element.kind == Kind::toggle) {
      element.strong = !element.strong;
    } else if (element.kind == Kind::tab || isChoice(element)) {
      if (element.kind == Kind::row) values["chosen"] = element.label;
      select(element.kind, element.label);
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
    const bool isSecret = isInside(field.label, "password") || isInside(field.label, "pin");
    field.detail = isSecret ? "" : text;
    for (std::size_t i = 0; isSecret && i < countCharacters(text); ++i) field.detail += "•";
    if (!isSecret) values["typed"] = text;
  }

  /// Lets the seconds pass that a text such as "Wait 5 seconds" speaks of.
  void letTimePass(std::string_view text) {
    const std::string before = values["time"];
    for (const auto word : split(text)) {
      if (word.front() >= '0' && word.front() <= '9') values["time"] = std::string(word) + " s";
    }
    for (auto& element : screen.elements) {
      if (element.detail == before) element.detail = values["time"];
    }
  }

  /// Stands in for what a building block types.
  void fillIn() {
    constexpr std::array samples{"Ada Lind", "12 Harbour Street", "Northport", "48010"};
    std::size_t next = 0;
    for (auto& element : screen.elements) {
      if (element.kind == Kind::field && element.detail.empty()) {
        element.detail = samples[next++ % samples.size()];
      }
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

const App& appFor(std::string_view name, const std::vector<StepWords>& steps) {
  const auto isAbout = [&](const App& app) {
    return StepWords("", name).speakOf(app.words) ||
           std::ranges::any_of(steps, [&app](const auto& step) { return step.speakOf(app.words); });
  };
  const auto known = apps();
  const auto found = std::ranges::find_if(known, isAbout);
  return found == known.end() ? known.back() : *found;
}

Touch drag(Point from, Point to) {
  // Files need no more than this.
  const auto rounded = [](double share) { return std::round(share * 10'000) / 10'000; };
  return {rounded(from.x), rounded(from.y), rounded(to.x), rounded(to.y)};
}

/// A finger goes the other way than what comes into sight.
Touch scrollTouch(const StepWords& step) {
  if (step.speakOf("up")) return drag({0.5, 0.34}, {0.5, 0.74});
  if (step.speakOf("left")) return drag({0.18, 0.54}, {0.82, 0.54});
  if (step.speakOf("right")) return drag({0.82, 0.54}, {0.18, 0.54});
  return drag({0.5, 0.74}, {0.5, 0.34});
}

Touch dragTouch(const StepWords& step, Point from) {
  if (step.speakOf("handle slider middle")) return drag(from, {0.5, from.y});
  if (step.speakOf("up top")) return drag(from, {from.x, 0.16});
  if (step.speakOf("down bottom")) return drag(from, {from.x, 0.86});
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
  screens = Teller(test, steps, appFor(appName, steps), std::move(first)).tell();
}

std::vector<Touch> touchesOf(const StepWords& step, const std::optional<Rect>& target) {
  if (step.act == ScreenAct::scroll) return {scrollTouch(step)};
  if (!target) return {};
  const Point at = target->centre();
  if (step.act == ScreenAct::drag) return {dragTouch(step, at)};
  if (step.act != ScreenAct::tap) return {};
  Touch touch = drag(at, at);
  touch.endX = touch.endY = std::nullopt;
  return {touch};
}

}  // namespace corvane::standin
