#include "corvane_standin/capture/PageContents.h"

#include <algorithm>
#include <charconv>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/capture/Stock.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;
using Elements = std::vector<Element>;

Element simple(Kind kind, std::string label, std::string detail = {}, bool strong = false) {
  return {.kind = kind, .label = std::move(label), .detail = std::move(detail), .strong = strong};
}

Elements shopFront(const PageView& page) {
  Elements elements{
      simple(Kind::searchField, "Search the shop"),
      simple(Kind::heading, page.named(NamedPart::Kind::text).value_or("New this week"))};
  for (const auto& good : goods()) {
    if (elements.size() < 8) elements.push_back(goodsElement(Kind::card, good.name));
  }
  elements.push_back(simple(Kind::heading, "Departments"));
  for (const char* department : {"Living room", "Garden", "Bath"}) {
    elements.push_back(simple(Kind::row, department));
  }
  return elements;
}

Elements walkList(const StorySoFar& story) {
  Elements elements{simple(Kind::heading, "My walks")};
  const auto add = [&](std::string_view name, double kilometres) {
    elements.push_back({.kind = Kind::row,
                        .label = std::string(name),
                        .detail = shownDistance(kilometres, story.inMiles),
                        .picture = Element::Picture::route});
  };
  if (story.walkSaved) add("Today's walk", 0.4);
  for (const auto& walk : walks()) add(walk.name, walk.kilometres);
  return elements;
}

Elements productList(const std::string& title, const StorySoFar& story) {
  auto chosen = goodsNamed(title);
  if (chosen.empty() && !story.lastTyped.empty()) chosen = goodsNamed(story.lastTyped);
  if (chosen.empty()) chosen = goods();
  Elements elements;
  for (const auto& good : chosen) elements.push_back(goodsElement(Kind::row, good.name));
  return elements;
}

Elements product(const std::string& name) {
  return {simple(Kind::hero, name), simple(Kind::heading, name),
          simple(Kind::paragraph,
                 "Made in small numbers by people we know. Leaves our house within two days."),
          simple(Kind::amount, "Price", shownAmount(priceOf(name)), true)};
}

/// The percentage at the end of a voucher's code, as in "SPRING10".
std::int64_t discountOf(const std::string& code) {
  const auto digits =
      std::find_if(code.begin(), code.end(), [](char c) { return c >= '0' && c <= '9'; });
  std::int64_t percent = 10;
  std::from_chars(code.data() + (digits - code.begin()), code.data() + code.size(), percent);
  return std::clamp<std::int64_t>(percent, 1, 100);
}

Elements cart(const PageView& page, const StorySoFar& story) {
  std::vector<std::string> names{"Enamel mug"};
  const bool billMatters = page.speaksOf({"voucher", "coupon", "total", "subtotal", "check out"});
  if (billMatters) names.insert(names.end(), {"Linen apron", "Glass bottle"});
  Elements elements;
  std::int64_t subtotal = 0;
  for (const auto& name : names) {
    elements.push_back(goodsElement(Kind::row, name));
    subtotal += priceOf(name);
  }
  elements.push_back(simple(Kind::amount, "Subtotal", shownAmount(subtotal)));
  std::int64_t total = subtotal;
  if (!story.lastTyped.empty() && page.speaksOf({"voucher", "coupon"})) {
    const std::int64_t discount = subtotal * discountOf(story.lastTyped) / 100;
    elements.push_back(simple(Kind::amount, "Voucher " + story.lastTyped, shownAmount(-discount)));
    if (!story.wrongTotal) total -= discount;
  }
  elements.push_back(simple(Kind::amount, "Total", shownAmount(total), true));
  return elements;
}

Elements form(const PageView& page) {
  Elements elements;
  if (page.has(InteractionType::userDefined)) {
    for (const char* label : {"Name", "Street", "City"})
      elements.push_back(simple(Kind::field, label));
  }
  if (page.arrival.way == Arrival::Way::button && page.aboutWalks) {
    elements.push_back(simple(Kind::field, "Name of the walk", "Today's walk"));
  }
  return elements;
}

Elements settings(const StorySoFar& story) {
  return {simple(Kind::row, "Units", story.inMiles ? "Miles" : "Kilometres"),
          simple(Kind::row, "Map style", "Outdoors"),
          simple(Kind::toggle, "Spoken splits", {}, true),
          simple(Kind::toggle, "Pause by itself"),
          simple(Kind::row, "Export"),
          simple(Kind::row, "About")};
}

Elements choice(const std::string& title) {
  if (asciiLowercase(title).starts_with("unit")) {
    return {simple(Kind::row, "Kilometres", {}, true), simple(Kind::row, "Miles")};
  }
  return {simple(Kind::row, "Automatic", {}, true)};
}

Elements notice(const PageView& page, const std::string& title) {
  if (page.speaksOf({"greets", "welcome"})) {
    const auto name = page.named(NamedPart::Kind::unsaid);
    return {simple(Kind::notice, "Hello" + (name ? ", " + *name : std::string()),
                   "You are signed in. Your orders and addresses are kept here.", true),
            simple(Kind::button, "Sign out")};
  }
  const bool ordered = page.speaksOf({"order"});
  return {simple(
      Kind::notice, title,
      ordered ? "Your order number is 4711-0815. We write to you as soon as it is on its way."
              : "All of it was saved.",
      true)};
}

}  // namespace

Element goodsElement(Element::Kind kind, std::string_view name) {
  return {.kind = kind,
          .label = std::string(name),
          .detail = shownAmount(priceOf(name)),
          .picture = Element::Picture::goods};
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
      return product(title);
    case PageKind::cart:
      return cart(page, story);
    case PageKind::empty:
      return {simple(Kind::notice, page.named(NamedPart::Kind::text).value_or("Nothing here yet"),
                     "What you add is kept here for you.")};
    case PageKind::form:
      return form(page);
    case PageKind::search: {
      Elements elements = productList(title, story);
      elements.insert(elements.begin(), simple(Kind::searchField, "Search the shop", {}, true));
      return elements;
    }
    case PageKind::filter:
      return {simple(Kind::toggle, "In stock only", {}, true), simple(Kind::toggle, "On sale"),
              simple(Kind::row, "Sort by", "Newest")};
    case PageKind::settings:
      return settings(story);
    case PageKind::choice:
      return choice(title);
    case PageKind::recording:
      return {simple(Kind::map, "Recording", "0:00")};
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
