#include "corvane_standin/capture/Pages.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/steps/Steps.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;

/// In the order of the kinds.
constexpr std::array<std::string_view, 21> kindNames{
    "back",   "searchIcon",  "searchField", "heading", "paragraph",   "card",         "item",
    "row",    "field",       "toggle",      "slider",  "picture",     "notice",       "amount",
    "button", "roundButton", "tab",         "dialog",  "dialogField", "dialogButton", "appIcon"};

/// What apps have to show: products by their department, walks by the unit of their length.
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> items{{
    {"Shop, Kitchen",
     "item Enamel mug = 14.00 | item Linen apron = 36.00 | item Stoneware bowl = 18.50 |"
     "item Glass bottle = 14.00"},
    {"Shop, Living room",
     "item Beeswax candle = 12.00 | item Desk lamp = 59.00 | item Linen cushion = 24.00"},
    {"Shop, Garden", "item Willow basket = 42.00 | item Herb planter = 22.00"},
    {"Shop, Bath", "item Linen towel = 9.50"},
    {"Kilometres",
     "item Lakeside loop = 7.8 km | item Ridge path = 12.4 km | item Old town = 3.1 km"},
    {"Miles", "item Lakeside loop = 4.8 mi | item Ridge path = 7.7 mi | item Old town = 1.9 mi"},
}};

constexpr std::string_view openCommands = "open launch start back";
constexpr std::string_view product =
    "back Back | picture $tapped | heading $tapped | amount! Price = $price | button! Add to cart |"
    "paragraph Made in small numbers by people we know. Leaves our house within two days.";
constexpr Page otherTab{"$tapped", "", "tab", "",
                        "notice Nothing here yet = What you keep is shown here."};
constexpr Page phone{"", "", "", "terminate close kill",
                     "appIcon Calendar | appIcon Photos | appIcon Maps | appIcon Weather |"
                     "appIcon $app"};

constexpr Page shopPages[]{
    {"$app", "shop, back", "appIcon", openCommands,
     "searchIcon Magnifying glass | searchField Search | heading New this week | card Shop |"
     "heading Departments | row Kitchen | row Living room | row Garden | row Bath"},
    {"$tapped", "", "card", "", product},
    {"$tapped", "", "item", "", product},
    {"$tapped", "", "row", "", "back Back | item $tapped"},
    {"Cart", "cart, basket, view cart", "", "",
     "item Enamel mug | amount Subtotal = 14.00 | amount! Total = 14.00 | button! Check out"},
    {"Cart", "", "", "cart basket",
     "item Enamel mug | item Linen apron | item Glass bottle | amount Subtotal = 64.00 |"
     "amount! Total = 64.00 | button Add voucher | button! Check out as guest"},
    {"Cart", "add voucher, voucher", "", "",
     "dialog $tapped = It is added as soon as it has been checked. | dialogField! Code |"
     "dialogButton Cancel | dialogButton! Redeem"},
    {"Cart", "redeem, apply", "", "",
     "item Enamel mug | item Linen apron | item Glass bottle | amount Subtotal = 64.00 |"
     "amount Voucher $typed = −6.40 | amount! Total = $total | button! Check out as guest"},
    {"Cart", "remove, delete", "", "",
     "notice Your cart is empty = What you add is kept here for you."},
    {"Shipping address", "check out, checkout", "", "",
     "field Name | field Street | field City | button! Place order"},
    {"Shipping address", "", "", "address",
     "field Name = Ada Lind | field Street = 12 Harbour Street | field City = Northport |"
     "button! Place order"},
    {"Thank you", "place order, pay, buy", "", "",
     "notice! Thank you = Your order number is 4711-0815. We write to you as soon as it is on its "
     "way."},
    {"Account", "account, profile, sign out, log out", "", "",
     "field E-mail | field Password | button! Sign in"},
    {"Account", "sign in, log in", "", "",
     "notice! Hello, $typed = You are signed in. Your orders and addresses are kept here. |"
     "button Sign out"},
    {"Search", "magnifying, search", "", "", "back Back | searchField! Search | item Shop"},
    {"Search", "", "searchField", "", "back Back | searchField Search = $typed | item $typed"},
    {"Filter", "filter, refine", "", "",
     "back Back | toggle! In stock only | slider Price = 0 – 60 | button! Show results"},
    {"Results", "show results, results", "", "", "back Back | item $typed"},
    otherTab,
    phone,
};

constexpr Page walkPages[]{
    {"$app", "walks, back", "appIcon", openCommands,
     "heading My walks | item $chosen | roundButton! Record"},
    {"$app", "save", "", "",
     "heading My walks | item Today's walk = 0.4 km | item $chosen | roundButton! Record"},
    {"Record", "record, start", "", "", "picture Recording = GPS | button! Stop"},
    {"Record", "stop, finish", "", "", "picture Recorded = 0.4 km | button! Save"},
    {"Settings", "settings, preferences", "", "", "row Units = $chosen | toggle! Spoken splits"},
    {"Units", "units", "", "", "back Back | row Kilometres | row Miles"},
    otherTab,
    phone,
};

constexpr App shop{"tab Shop | tab Cart | tab Account", shopPages};
constexpr App walks{"tab Walks | tab Map | tab Settings", walkPages};

}  // namespace

const App& appCalled(std::string_view name) {
  const std::string lower = asciiLowercase(name);
  const bool isAboutWalks = std::ranges::any_of(
      split(lower), [](auto word) { return isOneOf("walk walks trail hike", word); });
  return isAboutWalks ? walks : shop;
}

std::string_view nameOf(Kind kind) {
  return kindNames[static_cast<std::size_t>(kind)];
}

std::vector<Element> elementsOf(std::string_view text) {
  std::vector<Element> elements;
  for (const auto part : split(text, "|")) {
    const auto kindEnd = std::min(part.find(' '), part.size());
    const bool isStrong = part[kindEnd - 1] == '!';
    const auto* const kind = std::ranges::find(kindNames, part.substr(0, kindEnd - isStrong));
    if (kind == kindNames.end()) throw std::logic_error("no kind of element: " + std::string(part));
    auto texts = split(part.substr(kindEnd), " = ");
    texts.resize(2);
    elements.push_back({static_cast<Kind>(kind - kindNames.begin()), std::string(texts[0]),
                        std::string(texts[1]), isStrong});
  }
  return elements;
}

std::vector<Element> itemsFor(const Element& element) {
  const bool isItem = element.kind == Kind::card || element.kind == Kind::item;
  if (!isItem || !element.detail.empty()) return {element};
  const std::string wanted = asciiLowercase(element.label);
  std::vector<Element> found;
  for (const auto& [group, members] : items) {
    for (auto& item : elementsOf(members)) {
      const std::string names = asciiLowercase(item.label + "\n" + std::string(group));
      item.kind = element.kind;
      if (names.find(wanted) != names.npos) found.push_back(std::move(item));
    }
  }
  return found;
}

}  // namespace corvane::standin
