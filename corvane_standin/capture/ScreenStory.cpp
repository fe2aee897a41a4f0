#include "corvane_standin/capture/ScreenStory.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <regex>
#include <utility>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/capture/Pages.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;

/// What people call the parts of a screen.
constexpr std::pair<std::string_view, Kind> kindWords[]{
    {"button", Kind::button},
    {"tab", Kind::tab},
    {"field box", Kind::field},
    {"product item", Kind::item},
    {"row entry cell option link", Kind::row},
    {"heading title text message list page screen", Kind::heading},
    {"handle slider", Kind::slider},
    {"switch toggle", Kind::toggle}};

std::optional<Kind> kindOf(const std::string& word) {
  const std::string lower = asciiLowercase(word);
  for (const auto& [words, kind] : kindWords) {
    if (isOneOf(words, lower)) return kind;
  }
  return std::nullopt;
}

std::vector<NamedPart> quotedParts(const std::string& text) {
  // The word before it, the name in one of three kinds of quotes and the word after it. An
  // apostrophe, which has a letter before it or after it, is no quote.
  static const std::regex quoted(
      R"re((\w*)(?: of)? *(?:"([^"]*)"|“(.*?)”|\B'(.+?)'\B)(?= *(\w*)))re");
  std::vector<NamedPart> parts;
  for (std::sregex_iterator at(text.begin(), text.end(), quoted), end; at != end; ++at) {
    const auto& match = *at;
    const auto before = kindOf(match.str(1));
    const std::string label = match.str(2) + match.str(3) + match.str(4);
    if (!label.empty()) parts.push_back({before ? before : kindOf(match.str(5)), label});
  }
  return parts;
}

/// What a tap such as "Tap the Log in button at the top" names without quotes.
std::vector<NamedPart> unquotedPart(const std::string& text) {
  static const std::regex tap(
      "(?:(?:tap|press|click) )?(?:on )?(?:the |a )?(.*?)(?: (button|tab|field|row))?"
      "(?: (?:in|at|on) the .*)?",
      std::regex::icase);
  std::smatch match;
  if (!std::regex_match(text, match, tap) || match.length(1) == 0) return {};
  return {{kindOf(match.str(2)), capitalised(match.str(1))}};
}

bool isInside(std::string_view whole, std::string_view part) {
  return asciiLowercase(whole).find(asciiLowercase(part)) != std::string::npos;
}

bool isSame(std::string_view a, std::string_view b) {
  return asciiLowercase(a) == asciiLowercase(b);
}

/// What a step that healed found in the place of what it looked for, when the outcome tells.
std::string foundInstead(const TestOutcome& outcome) {
  const std::string reason = outcome.failureReason.value_or("");
  const auto start = reason.find(" as \"");
  if (outcome.kind != TestOutcome::Kind::healed || start == reason.npos) return "";
  const StepWords words("", reason.substr(start));
  return words.parts.empty() ? "" : words.parts.front().label;
}

bool isOfDialog(const Element& element) {
  return nameOf(element.kind).starts_with("dialog");
}

/// Tells a test step by step: `screen` is what the phone shows.
class Teller {
 public:
  Teller(const PlannedTest& test, const std::vector<StepWords>& steps, Screen firstScreen)
      : test(test),
        steps(steps),
        app(appCalled(firstScreen.appName)),
        screen(std::move(firstScreen)) {
    const bool findsDefect = test.outcome.kind == TestOutcome::Kind::failed;
    values = {{"app", screen.appName},
              {"chosen", "Kilometres"},
              {"total", findsDefect ? "64.00" : "57.60"},
              {"tapped", ""},
              {"price", ""},
              {"typed", ""}};
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
    auto elements = elementsOf(page.elements);
    closeDialog();
    leaveFields();
    if (!isOfDialog(elements.front())) {
      // The tabs stay, and what a test calls a tab is one.
      const auto tabs = elementsOf(app.tabs);
      const bool isPhone = &page == &app.pages.back();
      std::erase_if(screen.elements,
                    [=](const Element& each) { return isPhone || each.kind != Kind::tab; });
      if (!isPhone && screen.elements.empty()) screen.elements = tabs;
      screen.scrolled = false;
      screen.title = substituteParameters(page.title, values);
      select(Kind::tab, &page == &app.pages.front() ? tabs.front().label : screen.title);
    }
    for (auto& element : elements) {
      element.label = substituteParameters(element.label, values);
      element.detail = substituteParameters(element.detail, values);
      if (element.kind == Kind::row && element.label == values["chosen"]) element.strong = true;
      for (auto& item : itemsFor(element)) screen.elements.push_back(std::move(item));
    }
  }

  /// Sees to it that what a step names is on the screen, or is not when the step fails by that.
  void prepare(std::size_t i) {
    const StepWords& step = steps[i];
    for (const auto& part : step.parts) {
      const bool isTitle = step.act == ScreenAct::look && isInside(screen.title, part.label);
      if (fails(i, "missing found")) {
        std::erase_if(screen.elements, [&](const auto& e) { return isSame(e.label, part.label); });
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
    if (step.act == ScreenAct::tap) {
      return subject ? pageOpenedBy(*subject, step.parts.front().label) : nullptr;
    }
    if (step.act != ScreenAct::command && step.act != ScreenAct::fillForm &&
        step.act != ScreenAct::otherSteps) {
      return nullptr;
    }
    const bool isSearch = step.speakOf("return enter") && screen.has(Kind::searchField);
    return pageWhere([&](const Page& page) {
      return isSearch ? page.opener == nameOf(Kind::searchField) : step.speakOf(page.words);
    });
  }

  [[nodiscard]] const Page* pageOpenedBy(const Element& tapped, std::string_view label) const {
    if (tapped.takesText() || isChoice(tapped) || !tapped.enabled) return nullptr;
    const std::string wanted = asciiLowercase(label) + " ";
    const Page* const named = pageWhere([&wanted](const Page& page) {
      return std::ranges::any_of(split(page.labels, ","), [&wanted](std::string_view front) {
        return wanted.starts_with(std::string(front) + " ");
      });
    });
    if (named) return named;
    return pageWhere([&tapped](const Page& page) { return page.opener == nameOf(tapped.kind); });
  }

  template <class Predicate>
  [[nodiscard]] const Page* pageWhere(Predicate isWanted) const {
    const auto found = std::ranges::find_if(app.pages, isWanted);
    return found == app.pages.end() ? nullptr : &*found;
  }

  /// Whether it is one of several rows, one of which is chosen.
  [[nodiscard]] bool isChoice(const Element& element) const {
    return element.kind == Kind::row &&
           last([](const Element& e) { return e.kind == Kind::row && e.strong; });
  }

  void take(std::size_t i, Element* subject) {
    const StepWords& step = steps[i];
    if (step.act == ScreenAct::scroll) screen.scrolled = !step.speakOf("up");
    if (step.act == ScreenAct::command) leaveFields();
    if (!subject) return;
    if (step.act == ScreenAct::tap) touch(*subject);
    if (step.act == ScreenAct::type) type(*subject, step.description);
    if (step.act != ScreenAct::drag) return;
    const bool isTapNext = i + 1 < steps.size() && steps[i + 1].act == ScreenAct::tap;
    if (subject->kind == Kind::slider) {
      subject->strong = true;
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
    } else if (isChoice(element)) {
      values["chosen"] = element.label;
      select(Kind::row, values["chosen"]);
    } else if (element.kind == Kind::dialogButton) {
      closeDialog();
    }
  }

  void select(Kind kind, std::string_view label) {
    if (!last([&](const Element& e) { return e.kind == kind && e.label == label; })) return;
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

  void closeDialog() { std::erase_if(screen.elements, isOfDialog); }

  const PlannedTest& test;
  const std::vector<StepWords>& steps;
  const App& app;
  Screen screen;
  std::map<std::string, std::string> values;
  std::vector<Screen> screens;
};

/// Files need no more than this.
double rounded(double share) {
  return std::round(share * 10'000) / 10'000;
}

Touch drag(Point from, Point to) {
  return {rounded(from.x), rounded(from.y), rounded(to.x), rounded(to.y)};
}

}  // namespace

StepWords::StepWords(std::string_view interactionType, std::string_view wholeDescription) {
  // Nobody reads more on a screen.
  constexpr std::size_t longest = 400;
  description = toValidUtf8(wholeDescription.substr(0, longest));
  if (const auto type = fromRawValue<InteractionType>(interactionType)) act = stepType(*type).act;
  // What is typed is no description, and what other tests do is not on this screen.
  if (act == ScreenAct::type || act == ScreenAct::otherSteps) return;
  while (description.ends_with('.')) description.pop_back();
  parts = quotedParts(description);
  if (act == ScreenAct::tap && parts.empty()) parts = unquotedPart(description);
}

bool StepWords::speakOf(std::string_view words) const {
  const std::string lower = asciiLowercase(description);
  return std::ranges::any_of(split(lower),
                             [words](std::string_view word) { return isOneOf(words, word); });
}

ScreenStory::ScreenStory(const PlannedTest& test, const std::string& appName,
                         const std::string& platform) {
  for (const auto& step : test.steps) steps.emplace_back(step.type, step.description);
  const std::string instead = foundInstead(test.outcome);
  if (!instead.empty() && test.turningStep < steps.size()) {
    for (auto& part : steps[test.turningStep].parts) part.label = instead;
  }
  Screen first;
  first.isAndroid = platform == "android";
  first.appName = appName;
  screens = Teller(test, steps, std::move(first)).tell();
}

std::vector<Touch> touchesOf(const StepWords& step, const std::optional<Rect>& target) {
  if (step.act == ScreenAct::scroll) {
    // A finger goes the other way than what comes into sight.
    const double from = step.speakOf("up") ? 0.34 : 0.74;
    return {drag({0.5, from}, {0.5, 1.08 - from})};
  }
  if (!target || (step.act != ScreenAct::drag && step.act != ScreenAct::tap)) return {};
  const Point at = target->centre();
  if (step.act == ScreenAct::drag) {
    if (step.speakOf("handle slider middle")) return {drag(at, {0.5, at.y})};
    const bool isLeft = step.speakOf("left");
    return {drag({isLeft ? 0.84 : 0.16, at.y}, {isLeft ? 0.1 : 0.9, at.y})};
  }
  return {{rounded(at.x), rounded(at.y), std::nullopt, std::nullopt}};
}

}  // namespace corvane::standin
