#include "corvane_standin/story/StoryPages.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

using Elements = std::vector<Element>;
using Kind = Element::Kind;
using Way = Arrival::Way;

/// What the made-up apps have to show.
struct Good {
  std::string_view name;
  /// In hundredths.
  std::int64_t price;
  std::string_view department;
};

constexpr std::array goods{
    Good{"Enamel mug", 1400, "Kitchen"},     Good{"Linen apron", 3600, "Kitchen"},
    Good{"Stoneware bowl", 1850, "Kitchen"}, Good{"Beeswax candle", 1200, "Living room"},
    Good{"Willow basket", 4200, "Garden"},   Good{"Desk lamp", 5900, "Living room"},
    Good{"Linen towel", 950, "Bath"},        Good{"Herb planter", 2200, "Garden"},
    Good{"Glass bottle", 1400, "Kitchen"},   Good{"Linen cushion", 2400, "Living room"},
    Good{"Linen napkins", 1500, "Kitchen"},  Good{"Linen tablecloth", 3800, "Kitchen"},
};

struct Walk {
  std::string_view name;
  double kilometres;
};

constexpr std::array walks{Walk{"Lakeside loop", 7.8}, Walk{"Ridge path", 12.4},
                           Walk{"Old town", 3.1},      Walk{"Forest round", 6.0},
                           Walk{"Harbour wall", 4.2},  Walk{"Mill stream", 5.5}};

bool begins(const std::string& label, std::initializer_list<std::string_view> fronts) {
  const std::string lower = asciiLowercase(label);
  return std::any_of(fronts.begin(), fronts.end(),
                     [&lower](std::string_view front) { return lower.starts_with(front); });
}

bool isInside(const std::string& label, std::string_view word) {
  return asciiLowercase(label).find(word) != std::string::npos;
}

/// How a command of the phone changes the page; nothing for one that does not.
std::optional<Way> wayByCommand(const StepWords& step) {
  if (!step.is(ScreenAct::command)) return std::nullopt;
  if (step.speaksOf({"terminate", "close", "kill", "terminateapplication"})) return Way::closed;
  if (step.speaksOf({"open", "launch", "openapplication"}) ||
      step.description().find("{{APP_NAME}}") != std::string::npos) {
    return Way::opened;
  }
  return step.speaksOf({"back", "goback"}) ? std::optional(Way::back) : std::nullopt;
}

std::optional<Arrival> arrivalByTap(const NamedPart& part) {
  switch (part.kind) {
    case NamedPart::Kind::field:
    case NamedPart::Kind::toggle:
    case NamedPart::Kind::slider:
      return std::nullopt;
    case NamedPart::Kind::tab:
      return Arrival{Way::tab, part.label};
    case NamedPart::Kind::product:
      return Arrival{Way::product, part.label};
    case NamedPart::Kind::searchIcon:
      return Arrival{Way::search, part.label};
    case NamedPart::Kind::button:
      return Arrival{Way::button, part.label};
    default:
      return Arrival{beginsWithVerb(part.label) ? Way::button : Way::row, part.label};
  }
}

/// Where a step leads; nothing when the page stays.
std::optional<Arrival> leadsTo(const StepWords& step) {
  if (step.is(ScreenAct::otherSteps)) return Arrival{Way::otherSteps, {}};
  if (const auto way = wayByCommand(step)) return Arrival{*way, {}};
  const bool isTap = step.is(ScreenAct::tap) && !step.named().empty();
  return isTap ? arrivalByTap(step.named().front()) : std::nullopt;
}

bool isOnHomeScreen(const PageView& page) {
  if (page.arrival.way == Way::closed) return true;
  if (page.arrival.way != Way::start || page.steps.size() != 1) return false;
  return wayByCommand(page.steps[0]).value_or(Way::back) != Way::back;
}

bool takesText(const PageView& page) {
  return page.has(ScreenAct::type) || page.named(NamedPart::Kind::field) ||
         (page.has(ScreenAct::fillForm) && page.speaksOf({"fill", "form", "address"}));
}

PageKind kindWithText(const PageView& page) {
  const auto field = page.named(NamedPart::Kind::field);
  if (page.arrival.way == Way::search || (field && isInside(*field, "search"))) {
    return PageKind::search;
  }
  const bool asks = begins(page.arrival.label, {"add ", "enter ", "rename ", "new "});
  return asks && !field ? PageKind::question : PageKind::form;
}

std::int64_t priceOf(std::string_view name) {
  constexpr std::int64_t priceOfOthers = 1900;
  const auto* const found = std::ranges::find(goods, name, &Good::name);
  return found == goods.end() ? priceOfOthers : found->price;
}

/// An amount as it is shown, e.g. "14.00".
std::string shownAmount(std::int64_t hundredths) {
  const std::int64_t size = hundredths < 0 ? -hundredths : hundredths;
  const std::string cents = std::to_string(size % 100);
  return std::string(hundredths < 0 ? "−" : "") + std::to_string(size / 100) + "." +
         (cents.size() < 2 ? "0" : "") + cents;
}

/// A length as it is shown, e.g. "4.2 km".
std::string shownDistance(double kilometres, bool inMiles) {
  constexpr double milesInKilometre = 0.621371;
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.1f %s",
                inMiles ? kilometres * milesInKilometre : kilometres, inMiles ? "mi" : "km");
  return text.data();
}

Elements shopFront(const PageView& page) {
  constexpr std::size_t cards = 6;
  Elements elements{{Kind::searchField, "Search the shop"},
                    {Kind::heading, page.named(NamedPart::Kind::text).value_or("New this week")}};
  for (const auto& good : std::span(goods).first(cards)) {
    elements.push_back(goodsElement(Kind::card, good.name));
  }
  elements.insert(elements.end(), {{Kind::heading, "Departments"},
                                   {Kind::row, "Living room"},
                                   {Kind::row, "Garden"},
                                   {Kind::row, "Bath"}});
  return elements;
}

Elements walkList(const StorySoFar& story) {
  Elements elements{{Kind::heading, "My walks"}};
  const auto add = [&](const Walk& walk) {
    elements.push_back({Kind::row, std::string(walk.name),
                        shownDistance(walk.kilometres, story.inMiles), false,
                        Element::Picture::route});
  };
  if (story.walkSaved) add({"Today's walk", 0.4});
  std::ranges::for_each(walks, add);
  return elements;
}

/// The goods with this word in their names, whatever its case; of a department, all of its goods.
Elements goodsNamed(std::string_view word) {
  Elements found;
  const std::string wanted = asciiLowercase(word);
  for (const auto& good : goods) {
    if (asciiLowercase(good.name).find(wanted) != std::string::npos ||
        asciiLowercase(good.department) == wanted) {
      found.push_back(goodsElement(Kind::row, good.name));
    }
  }
  return found;
}

Elements productList(const std::string& title, const StorySoFar& story) {
  auto chosen = goodsNamed(title);
  if (chosen.empty() && !story.lastTyped.empty()) chosen = goodsNamed(story.lastTyped);
  return chosen.empty() ? goodsNamed("") : chosen;
}

/// The percentage at the end of a voucher's code, as in "SPRING10".
std::int64_t discountOf(const std::string& code) {
  const auto digits = std::min(code.find_first_of("0123456789"), code.size());
  std::int64_t percent = 10;
  std::from_chars(code.data() + digits, code.data() + code.size(), percent);
  return std::clamp<std::int64_t>(percent, 1, 100);
}

Elements cart(const PageView& page, const StorySoFar& story) {
  Elements elements{goodsElement(Kind::row, "Enamel mug")};
  std::int64_t subtotal = priceOf("Enamel mug");
  if (page.speaksOf({"voucher", "coupon", "total", "subtotal", "check out"})) {
    for (const std::string_view name : {"Linen apron", "Glass bottle"}) {
      elements.push_back(goodsElement(Kind::row, name));
      subtotal += priceOf(name);
    }
  }
  elements.push_back({Kind::amount, "Subtotal", shownAmount(subtotal)});
  std::int64_t total = subtotal;
  if (!story.lastTyped.empty() && page.speaksOf({"voucher", "coupon"})) {
    const std::int64_t discount = subtotal * discountOf(story.lastTyped) / 100;
    elements.push_back({Kind::amount, "Voucher " + story.lastTyped, shownAmount(-discount)});
    if (!story.wrongTotal) total -= discount;
  }
  elements.push_back({Kind::amount, "Total", shownAmount(total), true});
  return elements;
}

Elements form(const PageView& page) {
  Elements elements;
  if (page.has(ScreenAct::fillForm)) {
    elements = {{Kind::field, "Name"}, {Kind::field, "Street"}, {Kind::field, "City"}};
  }
  if (page.arrival.way == Way::button && page.aboutWalks) {
    elements.push_back({Kind::field, "Name of the walk", "Today's walk"});
  }
  return elements;
}

Elements notice(const PageView& page, const std::string& title) {
  if (page.speaksOf({"greets", "welcome"})) {
    const auto name = page.named(NamedPart::Kind::unsaid);
    return {{Kind::notice, "Hello" + (name ? ", " + *name : std::string()),
             "You are signed in. Your orders and addresses are kept here.", true},
            {Kind::button, "Sign out"}};
  }
  const bool ordered = page.speaksOf({"order"});
  return {{Kind::notice, title,
           ordered ? "Your order number is 4711-0815. We write to you as soon as it is on its way."
                   : "All of it was saved.",
           true}};
}

}  // namespace

std::vector<PageSteps> pagesOf(const std::vector<StepWords>& steps) {
  std::vector<PageSteps> pages(1);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    pages.back().end = i + 1;
    if (auto next = leadsTo(steps[i])) pages.push_back({i + 1, i + 1, std::move(*next)});
  }
  return pages;
}

bool PageView::speaksOf(std::initializer_list<std::string_view> words) const {
  return std::ranges::any_of(steps, [words](const StepWords& step) {
    return !step.is(ScreenAct::otherSteps) && step.speaksOf(words);
  });
}

bool PageView::has(ScreenAct act) const {
  return std::ranges::any_of(steps, [act](const StepWords& step) { return step.is(act); });
}

std::optional<std::string> PageView::named(NamedPart::Kind kind) const {
  for (const auto& step : steps) {
    for (const auto& part : step.named()) {
      if (part.kind == kind) return part.label;
    }
  }
  return std::nullopt;
}

PageKind kindOf(const PageView& page) {
  const Way way = page.arrival.way;
  const std::string& label = page.arrival.label;
  const PageKind root = page.aboutWalks ? PageKind::walks : PageKind::shopFront;
  if (isOnHomeScreen(page)) return PageKind::homeScreen;
  if (page.speaksOf({"thank you", "success", "successful", "confirmed", "greets", "welcome",
                     "order number"})) {
    return PageKind::notice;
  }
  if (page.speaksOf({"empty"})) return PageKind::empty;
  if (takesText(page)) return kindWithText(page);
  if (page.speaksOf({"slider", "handle"})) return PageKind::filter;
  const bool toCart = way == Way::tab && begins(label, {"cart", "basket", "bag"});
  if (!page.aboutWalks && (toCart || page.speaksOf({"cart", "basket", "voucher", "coupon", "total",
                                                    "subtotal", "check out", "checkout"}))) {
    return PageKind::cart;
  }
  if (way == Way::product) return PageKind::product;
  if (way == Way::row && page.before == PageKind::choice) return PageKind::same;
  if (page.aboutWalks) {
    if (page.speaksOf({"walks", "distance", "distances"})) return PageKind::walks;
    if (way == Way::button && begins(label, {"record", "start"})) return PageKind::recording;
  }
  if ((way == Way::tab || way == Way::row) && begins(label, {"settings", "preferences"})) {
    return PageKind::settings;
  }
  if (way == Way::row && page.has(ScreenAct::tap) && !page.speaksOf({"product", "products"}) &&
      (page.aboutWalks || begins(label, {"unit", "language", "currency", "sort"}))) {
    return PageKind::choice;
  }
  if (way == Way::start || way == Way::opened) return root;
  if (page.speaksOf({"grid", "catalogue", "catalog"})) return root;
  const bool afterResults = way == Way::button && isInside(label, "results");
  if (afterResults || way == Way::row || page.named(NamedPart::Kind::page) ||
      page.speaksOf({"list", "lists", "listed", "every", "each"})) {
    return page.aboutWalks ? PageKind::walks : PageKind::list;
  }
  if (way == Way::tab) return isInside(label, "map") ? PageKind::recording : root;
  return PageKind::same;
}

std::optional<std::string> titleOf(const PageView& page, PageKind kind) {
  const Way way = page.arrival.way;
  const std::string& label = page.arrival.label;
  if (kind == PageKind::homeScreen || kind == PageKind::question || kind == PageKind::same) {
    return std::nullopt;
  }
  if (const auto named = page.named(NamedPart::Kind::page)) return named;
  for (const auto& step : page.steps) {
    if (kind == PageKind::form && step.is(ScreenAct::fillForm) &&
        begins(step.description(), {"fill "})) {
      return capitalised(step.description().substr(5));
    }
  }
  if (way == Way::search) return "Search";
  if (way == Way::tab || way == Way::product || way == Way::row) return label;
  if (way == Way::button && isInside(label, "results")) return "Results";
  // What only finishes something leads back to where it was begun.
  if (way == Way::button &&
      !begins(label, {"sign",  "log",    "redeem", "remove", "delete", "save",    "done",
                      "ok",    "add",    "place",  "pay",    "submit", "confirm", "continue",
                      "close", "cancel", "not",    "stop",   "apply",  "send",    "check"})) {
    return label;
  }
  if (kind == PageKind::cart) return "Cart";
  if (kind == PageKind::shopFront || kind == PageKind::walks) return std::string();
  return std::nullopt;
}

Element goodsElement(Element::Kind kind, std::string_view name) {
  return {kind, std::string(name), shownAmount(priceOf(name)), false, Element::Picture::goods};
}

std::vector<Element> contentsOf(PageKind kind, const PageView& page, const std::string& title,
                                const StorySoFar& story) {
  switch (kind) {
    case PageKind::shopFront:
      return shopFront(page);
    case PageKind::walks:
      return walkList(story);
    case PageKind::list:
      return productList(title, story);
    case PageKind::product:
      return {{Kind::hero, title},
              {Kind::heading, title},
              {Kind::paragraph,
               "Made in small numbers by people we know. Leaves our house within two days."},
              {Kind::amount, "Price", shownAmount(priceOf(title)), true}};
    case PageKind::cart:
      return cart(page, story);
    case PageKind::empty:
      return {{Kind::notice, page.named(NamedPart::Kind::text).value_or("Nothing here yet"),
               "What you add is kept here for you."}};
    case PageKind::form:
      return form(page);
    case PageKind::search: {
      Elements elements = productList(title, story);
      elements.insert(elements.begin(), {Kind::searchField, "Search the shop", {}, true});
      return elements;
    }
    case PageKind::filter:
      return {{Kind::toggle, "In stock only", {}, true},
              {Kind::toggle, "On sale"},
              {Kind::row, "Sort by", "Newest"}};
    case PageKind::settings:
      return {{Kind::row, "Units", story.inMiles ? "Miles" : "Kilometres"},
              {Kind::row, "Map style", "Outdoors"},
              {Kind::toggle, "Spoken splits", {}, true},
              {Kind::toggle, "Pause by itself"},
              {Kind::row, "Export"},
              {Kind::row, "About"}};
    case PageKind::choice:
      if (!begins(title, {"unit"})) return {{Kind::row, "Automatic", {}, true}};
      return {{Kind::row, "Kilometres", {}, true}, {Kind::row, "Miles"}};
    case PageKind::recording:
      return {{Kind::map, "Recording", "0:00"}};
    case PageKind::notice:
      return notice(page, title);
    case PageKind::homeScreen:
    case PageKind::question:
    case PageKind::same:
      break;
  }
  return {};
}

}  // namespace corvane::standin
