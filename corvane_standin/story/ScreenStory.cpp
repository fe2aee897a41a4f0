#include "corvane_standin/story/ScreenStory.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/story/StoryPages.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;
using Way = Arrival::Way;

constexpr std::size_t mostTabs = 5;

std::vector<std::string> tabsFor(const std::vector<StepWords>& steps, bool aboutWalks) {
  std::vector<std::string> tabs = aboutWalks ? std::vector<std::string>{"Walks", "Map", "Settings"}
                                             : std::vector<std::string>{"Shop", "Cart", "Account"};
  for (const auto& step : steps) {
    for (const auto& part : step.named()) {
      if (part.kind != NamedPart::Kind::tab || tabs.size() == mostTabs) continue;
      if (std::find(tabs.begin(), tabs.end(), part.label) == tabs.end()) tabs.push_back(part.label);
    }
  }
  return tabs;
}

void selectTab(Screen& screen, std::string_view label) {
  const auto found = std::find(screen.tabs.begin(), screen.tabs.end(), label);
  if (found != screen.tabs.end()) {
    screen.selectedTab = static_cast<std::size_t>(found - screen.tabs.begin());
  }
}

/// How a failing step shows.
enum class Trouble { none, missing, greyedOut };

Trouble troubleOf(const TestOutcome& outcome) {
  if (outcome.kind != TestOutcome::Kind::failed) return Trouble::none;
  if (!outcome.failureReason) return Trouble::missing;
  const std::string reason = asciiLowercase(*outcome.failureReason);
  const auto says = [&reason](std::string_view words) {
    return reason.find(words) != std::string::npos;
  };
  if (says("grey") || says("gray") || says("disabled")) return Trouble::greyedOut;
  if (says("not on the screen") || says("no such") || says("not found") || says("missing")) {
    return Trouble::missing;
  }
  return Trouble::none;
}

/// What a step that healed found in the place of what it looked for, when the outcome tells.
std::optional<std::string> foundInstead(const TestOutcome& outcome) {
  if (outcome.kind != TestOutcome::Kind::healed) return std::nullopt;
  const std::string reason = outcome.failureReason.value_or("");
  constexpr std::string_view lead = " as \"";
  const auto start = reason.find(lead);
  if (start == std::string::npos) return std::nullopt;
  const auto begin = start + lead.size();
  const auto end = reason.find('"', begin);
  return end == std::string::npos ? std::nullopt : std::optional(reason.substr(begin, end - begin));
}

/// Marks what was chosen on the page before, when that is still in sight.
void markChoice(Screen& screen, const std::string& label) {
  const auto chosen = findElement(screen, label, Kind::row);
  if (!chosen) return;
  for (auto& element : screen.elements) {
    if (element.kind == Kind::row) element.strong = false;
  }
  screen.elements[*chosen].strong = true;
}

/// Takes away the button that led on, unless what it does can be done again.
void leaveButtonBehind(Screen& screen, const Arrival& arrival) {
  if (arrival.way != Way::button || asciiLowercase(arrival.label).starts_with("add to")) return;
  if (const auto button = findElement(screen, arrival.label, Kind::button)) {
    screen.elements.erase(screen.elements.begin() + static_cast<std::ptrdiff_t>(*button));
  }
}

/// Gives a page what is on it before its steps name anything.
void fill(Screen& screen, PageKind kind, const PageView& view, const StorySoFar& story) {
  if (kind == PageKind::homeScreen) return;
  if (kind == PageKind::question) {
    screen.dialog = Dialog{view.arrival.label,
                           "It is added as soon as it has been checked.",
                           std::string(),
                           {"Cancel"}};
  } else if (kind == PageKind::same) {
    markChoice(screen, view.arrival.label);
    leaveButtonBehind(screen, view.arrival);
  } else {
    screen.elements = contentsOf(kind, view, screen.title, story);
  }
  screen.keyboard = kind == PageKind::question || kind == PageKind::search;
}

/// Files need no more than this.
double rounded(double share) {
  return std::round(share * 10'000) / 10'000;
}

Touch tapAt(Point at) {
  return {rounded(at.x), rounded(at.y)};
}

Touch drag(Point from, Point to) {
  return {rounded(from.x), rounded(from.y), rounded(to.x), rounded(to.y)};
}

/// A finger goes the other way than what comes into sight.
Touch scrollTouch(const StepWords& step) {
  constexpr Point above{0.5, 0.34};
  constexpr Point below{0.5, 0.74};
  constexpr Point left{0.18, 0.54};
  constexpr Point right{0.82, 0.54};
  if (step.speaksOf({"up"})) return drag(above, below);
  if (step.speaksOf({"left"})) return drag(left, right);
  if (step.speaksOf({"right"})) return drag(right, left);
  return drag(below, above);
}

Touch dragTouch(const StepWords& step, Rect target) {
  const Point centre = target.centre();
  if (step.speaksOf({"handle", "slider", "middle"})) return drag(centre, {0.5, centre.y});
  if (step.speaksOf({"up", "top"})) return drag(centre, {centre.x, 0.16});
  if (step.speaksOf({"down", "bottom"})) return drag(centre, {centre.x, 0.86});
  if (step.speaksOf({"left"})) return drag({0.84, centre.y}, {0.1, centre.y});
  return drag({0.16, centre.y}, {0.9, centre.y});
}

}  // namespace

ScreenStory::ScreenStory(const PlannedTest& test, std::string appName,
                         const std::string& platform) {
  for (const auto& step : test.steps) steps.emplace_back(step.type, step.description);
  aboutWalks = asciiLowercase(appName).find("trail") != std::string::npos ||
               std::any_of(steps.begin(), steps.end(), [](const StepWords& step) {
                 return step.speaksOf({"walk", "walks", "trail", "hike", "distance"});
               });
  firstScreen.appName = std::move(appName);
  firstScreen.phone = platform == "android" ? Screen::Phone::android : Screen::Phone::ios;
  firstScreen.tabs = tabsFor(steps, aboutWalks);
  for (const auto& page : pagesOf(steps)) addPage(page, test);
}

void ScreenStory::addPage(const PageSteps& pageSteps, const PlannedTest& test) {
  PageView view{std::span(steps).subspan(pageSteps.first, pageSteps.end - pageSteps.first),
                pageSteps.arrival, aboutWalks};
  const Way way = view.arrival.way;
  Screen screen = firstScreen;
  if (!pages.empty()) {
    const std::size_t back = way == Way::back && pages.size() > 1 ? 2 : 1;
    const Page& from = pages[pages.size() - back];
    screen = screenOf(from, from.steps.end);
    view.before = pages.back().kind;
  }
  PageKind kind = kindOf(view);
  if (kind == PageKind::same && screen.elements.empty()) {
    kind = aboutWalks ? PageKind::walks : PageKind::shopFront;
  }
  screen.place = kind == PageKind::homeScreen ? Screen::Place::homeScreen : Screen::Place::app;
  screen.dialog.reset();
  screen.scrolled = false;
  const bool isRoot = kind == PageKind::shopFront || kind == PageKind::walks;
  if (way == Way::opened || (isRoot && way != Way::tab)) screen.selectedTab = 0;
  if (way == Way::tab) selectTab(screen, view.arrival.label);
  if (kind == PageKind::cart) selectTab(screen, "Cart");
  if (const auto title = titleOf(view, kind)) {
    screen.title = title->empty() ? screen.appName : *title;
    selectTab(screen, *title);
  }
  if (kind != PageKind::same && kind != PageKind::question) {
    screen.hasSearchIcon = kind == PageKind::shopFront;
    screen.canGoBack =
        !isRoot && (way == Way::product || way == Way::row || kind == PageKind::filter ||
                    kind == PageKind::search || kind == PageKind::recording);
  }
  fill(screen, kind, view, storyUntil(pageSteps, test));
  pages.push_back({pageSteps, std::move(screen), {}, buttonUnderRow(pageSteps), kind});
  nameParts(pages.back(), test);
}

StorySoFar ScreenStory::storyUntil(const PageSteps& page, const PlannedTest& test) const {
  StorySoFar story;
  story.wrongTotal = test.outcome.kind == TestOutcome::Kind::failed && page.has(test.turningStep);
  for (std::size_t i = 0; i < page.first; ++i) {
    if (steps[i].is(ScreenAct::type)) story.lastTyped = steps[i].description();
    if (!steps[i].is(ScreenAct::tap) || steps[i].named().empty()) continue;
    const std::string label = asciiLowercase(steps[i].named().front().label);
    story.inMiles |= label == "miles";
    story.walkSaved |= label == "save";
  }
  return story;
}

void ScreenStory::nameParts(Page& page, const PlannedTest& test) const {
  const Trouble trouble = troubleOf(test.outcome);
  for (std::size_t i = page.steps.first; i < page.steps.end; ++i) {
    const bool isTurning = i == test.turningStep;
    auto parts = steps[i].named();
    if (isTurning && trouble == Trouble::missing) parts.clear();
    const auto instead = isTurning ? foundInstead(test.outcome) : std::nullopt;
    if (instead && !parts.empty()) parts.front().label = *instead;
    for (const auto& part : parts) {
      if (part.label != page.underRow) addNamedPart(page.screen, part, steps[i], page.kind);
    }
    page.subjects.push_back(parts.empty() ? std::nullopt : std::optional(parts.front()));
    if (!isTurning || trouble != Trouble::greyedOut || parts.empty()) continue;
    const auto target = targetOf(page.screen, parts.front());
    if (target && target->part == Target::Part::element) {
      page.screen.elements[target->index].enabled = false;
    }
  }
}

Screen ScreenStory::screenOf(const Page& page, std::size_t step) const {
  Screen screen = page.screen;
  const auto targetAt = [&](std::size_t i) -> std::optional<Target> {
    const auto& subject = page.subjects[i - page.steps.first];
    return subject ? targetOf(screen, *subject) : std::nullopt;
  };
  for (std::size_t i = page.steps.first; i < std::min(step, page.steps.end); ++i) {
    applyStep(screen, steps[i], targetAt(i), page.underRow);
  }
  // What is to be scrolled to is not in sight yet.
  if (page.steps.has(step) && !steps[step].is(ScreenAct::scroll)) {
    screen.target = targetAt(step);
  }
  return screen;
}

Screen ScreenStory::screenAt(std::size_t step) const {
  const auto found = std::find_if(pages.begin(), pages.end(),
                                  [step](const Page& page) { return page.steps.has(step); });
  return screenOf(found == pages.end() ? pages.back() : *found, step);
}

std::string ScreenStory::buttonUnderRow(const PageSteps& page) const {
  bool isSwiped = false;
  for (std::size_t i = page.first; i < page.end; ++i) {
    isSwiped |= steps[i].is(ScreenAct::drag) && !steps[i].speaksOf({"handle", "slider"});
    if (!isSwiped || !steps[i].is(ScreenAct::tap) || steps[i].named().empty()) continue;
    const std::string& label = steps[i].named().front().label;
    const std::string lower = asciiLowercase(label);
    for (const std::string_view verb : {"remove", "delete", "archive", "edit"}) {
      if (lower.starts_with(verb)) return label;
    }
  }
  return isSwiped ? "Remove" : std::string();
}

std::vector<Touch> touchesOf(const StepWords& step, const std::optional<Rect>& target) {
  if (step.is(ScreenAct::scroll)) return {scrollTouch(step)};
  if (!target) return {};
  if (step.is(ScreenAct::tap)) return {tapAt(target->centre())};
  if (step.is(ScreenAct::drag)) return {dragTouch(step, *target)};
  return {};
}

}  // namespace corvane::standin
