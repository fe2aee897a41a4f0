#include "corvane_standin/capture/Pages.h"

#include <array>
#include <utility>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;

/// Something that an app has to show: a product in a department, a walk by the unit of its length.
struct Item {
  Kind kind;
  std::string_view name;
  std::string_view detail;
  std::string_view group;
};

constexpr std::array items{
    Item{Kind::goods, "Enamel mug", "14.00", "Kitchen"},
    Item{Kind::goods, "Linen apron", "36.00", "Kitchen"},
    Item{Kind::goods, "Stoneware bowl", "18.50", "Kitchen"},
    Item{Kind::goods, "Beeswax candle", "12.00", "Living room"},
    Item{Kind::goods, "Willow basket", "42.00", "Garden"},
    Item{Kind::goods, "Desk lamp", "59.00", "Living room"},
    Item{Kind::goods, "Linen towel", "9.50", "Bath"},
    Item{Kind::goods, "Herb planter", "22.00", "Garden"},
    Item{Kind::goods, "Glass bottle", "14.00", "Kitchen"},
    Item{Kind::goods, "Linen cushion", "24.00", "Living room"},
    Item{Kind::walk, "Lakeside loop", "7.8 km", "Kilometres"},
    Item{Kind::walk, "Ridge path", "12.4 km", "Kilometres"},
    Item{Kind::walk, "Old town", "3.1 km", "Kilometres"},
    Item{Kind::walk, "Lakeside loop", "4.8 mi", "Miles"},
    Item{Kind::walk, "Ridge path", "7.7 mi", "Miles"},
    Item{Kind::walk, "Old town", "1.9 mi", "Miles"},
};

constexpr PagePart shopFront[]{{Kind::searchIcon, "Magnifying glass"},
                               {Kind::searchField, "Search"},
                               {Kind::heading, "New this week"},
                               {Kind::card, ""},
                               {Kind::heading, "Departments"},
                               {Kind::row, "Kitchen"},
                               {Kind::row, "Living room"},
                               {Kind::row, "Garden"},
                               {Kind::row, "Bath"}};
constexpr PagePart product[]{
    {Kind::back, "Back"},
    {Kind::hero, "$tapped"},
    {Kind::heading, "$tapped"},
    {Kind::paragraph, "Made in small numbers by people we know. Leaves our house within two days."},
    {Kind::amount, "Price", "$price", true},
    {Kind::button, "Add to cart", {}, true}};
constexpr PagePart goodsList[]{{Kind::back, "Back"}, {Kind::goods, "$tapped"}};
constexpr PagePart cart[]{{Kind::goods, "Enamel mug"},
                          {Kind::amount, "Subtotal", "14.00"},
                          {Kind::amount, "Total", "14.00", true},
                          {Kind::button, "Check out", {}, true}};
constexpr PagePart fullCart[]{{Kind::goods, "Enamel mug"},
                              {Kind::goods, "Linen apron"},
                              {Kind::goods, "Glass bottle"},
                              {Kind::amount, "Subtotal", "64.00"},
                              {Kind::amount, "Total", "64.00", true},
                              {Kind::button, "Add voucher"},
                              {Kind::button, "Check out as guest", {}, true}};
constexpr PagePart voucherQuestion[]{
    {Kind::dialog, "$tapped", "It is added as soon as it has been checked."},
    {Kind::dialogField, "Code", {}, true},
    {Kind::dialogButton, "Cancel"},
    {Kind::dialogButton, "Redeem", {}, true}};
constexpr PagePart voucherCart[]{{Kind::goods, "Enamel mug"},
                                 {Kind::goods, "Linen apron"},
                                 {Kind::goods, "Glass bottle"},
                                 {Kind::amount, "Subtotal", "64.00"},
                                 {Kind::amount, "Voucher $typed", "−6.40"},
                                 {Kind::amount, "Total", "57.60", true, "64.00"},
                                 {Kind::button, "Check out as guest", {}, true}};
constexpr PagePart emptyCart[]{
    {Kind::notice, "Your cart is empty", "What you add is kept here for you."}};
constexpr PagePart address[]{{Kind::field, "Name"},
                             {Kind::field, "Street"},
                             {Kind::field, "City"},
                             {Kind::button, "Place order", {}, true}};
constexpr PagePart filledAddress[]{{Kind::field, "Name", "Ada Lind"},
                                   {Kind::field, "Street", "12 Harbour Street"},
                                   {Kind::field, "City", "Northport"},
                                   {Kind::button, "Place order", {}, true}};
constexpr PagePart thanks[]{
    {Kind::notice, "Thank you",
     "Your order number is 4711-0815. We write to you as soon as it is on its way.", true}};
constexpr PagePart account[]{
    {Kind::field, "E-mail"}, {Kind::field, "Password"}, {Kind::button, "Sign in", {}, true}};
constexpr PagePart greeting[]{{Kind::notice, "Hello, $typed",
                               "You are signed in. Your orders and addresses are kept here.", true},
                              {Kind::button, "Sign out"}};
constexpr PagePart search[]{
    {Kind::back, "Back"}, {Kind::searchField, "Search", {}, true}, {Kind::goods, ""}};
constexpr PagePart found[]{
    {Kind::back, "Back"}, {Kind::searchField, "Search", "$typed"}, {Kind::goods, "$typed"}};
constexpr PagePart filter[]{{Kind::back, "Back"},
                            {Kind::toggle, "In stock only", {}, true},
                            {Kind::slider, "Price", "0 – 60"},
                            {Kind::button, "Show results", {}, true}};
constexpr PagePart results[]{{Kind::back, "Back"}, {Kind::goods, "$typed"}};
constexpr PagePart nothing[]{{Kind::notice, "Nothing here yet", "What you keep is shown here."}};

constexpr PagePart walkList[]{
    {Kind::heading, "My walks"}, {Kind::walk, "$chosen"}, {Kind::roundButton, "Record", {}, true}};
constexpr PagePart longerWalkList[]{{Kind::heading, "My walks"},
                                    {Kind::walk, "Today's walk", "0.4 km"},
                                    {Kind::walk, "$chosen"},
                                    {Kind::roundButton, "Record", {}, true}};
constexpr PagePart recording[]{{Kind::map, "Recording", "GPS"}, {Kind::button, "Stop", {}, true}};
constexpr PagePart recorded[]{{Kind::map, "Recorded", "0.4 km"}, {Kind::button, "Save", {}, true}};
constexpr PagePart settings[]{{Kind::row, "Units", "$chosen"},
                              {Kind::toggle, "Spoken splits", {}, true}};
constexpr PagePart units[]{{Kind::back, "Back"}, {Kind::row, "Kilometres"}, {Kind::row, "Miles"}};

constexpr PagePart homeScreen[]{{Kind::appIcon, "Calendar"},
                                {Kind::appIcon, "Photos"},
                                {Kind::appIcon, "Maps"},
                                {Kind::appIcon, "Weather"},
                                {Kind::appIcon, "$app"}};

constexpr std::string_view openCommands = "open launch start back";
constexpr Page phonePage{.words = "terminate close kill", .parts = homeScreen};
constexpr Page otherTab{.title = "$tapped", .opener = Kind::tab, .parts = nothing};

constexpr std::array shopPages{
    Page{
        .labels = "shop, back", .opener = Kind::appIcon, .words = openCommands, .parts = shopFront},
    Page{.title = "$tapped", .opener = Kind::card, .parts = product},
    Page{.title = "$tapped", .opener = Kind::goods, .parts = product},
    Page{.title = "Cart", .labels = "cart, basket, view cart", .parts = cart},
    Page{.title = "Cart", .words = "cart basket", .parts = fullCart},
    Page{.title = "Cart", .labels = "add voucher, voucher", .parts = voucherQuestion},
    Page{.title = "Cart", .labels = "redeem, apply", .parts = voucherCart},
    Page{.title = "Cart", .labels = "remove, delete", .parts = emptyCart},
    Page{.title = "Shipping address", .labels = "check out, checkout", .parts = address},
    Page{.title = "Shipping address", .words = "address", .parts = filledAddress},
    Page{.title = "Thank you", .labels = "place order, pay, buy", .parts = thanks},
    Page{.title = "Account", .labels = "account, profile, sign out, log out", .parts = account},
    Page{.title = "Account", .labels = "sign in, log in", .parts = greeting},
    Page{.title = "Search", .labels = "magnifying, search", .parts = search},
    Page{.title = "Search", .opener = Kind::searchField, .parts = found},
    Page{.title = "Filter", .labels = "filter, refine", .parts = filter},
    Page{.title = "Results", .labels = "show results, results", .parts = results},
    Page{.title = "$tapped", .opener = Kind::row, .parts = goodsList},
    otherTab,
    phonePage,
};

constexpr std::array walkPages{
    Page{
        .labels = "walks, back", .opener = Kind::appIcon, .words = openCommands, .parts = walkList},
    Page{.labels = "save", .parts = longerWalkList},
    Page{.title = "Record", .labels = "record, start", .parts = recording},
    Page{.title = "Record", .labels = "stop, finish", .parts = recorded},
    Page{.title = "Settings", .labels = "settings, preferences", .parts = settings},
    Page{.title = "Units", .labels = "units", .parts = units},
    otherTab,
    phonePage,
};

constexpr PagePart shopTabs[]{{Kind::tab, "Shop"}, {Kind::tab, "Cart"}, {Kind::tab, "Account"}};
constexpr PagePart walkTabs[]{{Kind::tab, "Walks"}, {Kind::tab, "Map"}, {Kind::tab, "Settings"}};

constexpr std::array allApps{
    App{"walk walks trail hike", walkTabs, walkPages},
    App{"", shopTabs, shopPages},
};

}  // namespace

std::span<const App> apps() {
  return allApps;
}

std::vector<Element> itemsFor(Element element) {
  const bool isCard = element.kind == Kind::card;
  const bool isItem = isCard || element.kind == Kind::goods || element.kind == Kind::walk;
  if (!isItem || !element.detail.empty()) return {std::move(element)};
  const std::string wanted = asciiLowercase(element.label);
  std::vector<Element> found;
  for (const auto& [kind, name, detail, group] : items) {
    const std::string text = asciiLowercase(std::string(name) + "\n" + std::string(group));
    if (kind != (isCard ? Kind::goods : element.kind) || text.find(wanted) == text.npos) continue;
    found.push_back({element.kind, std::string(name), std::string(detail)});
  }
  return found.empty() && !wanted.empty() ? itemsFor({element.kind}) : found;
}

}  // namespace corvane::standin
