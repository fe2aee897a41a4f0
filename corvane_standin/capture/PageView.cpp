#include "corvane_standin/capture/PageView.h"

#include <algorithm>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

using Way = Arrival::Way;

bool begins(const std::string& label, std::initializer_list<std::string_view> fronts) {
  const std::string lower = asciiLowercase(label);
  return std::any_of(fronts.begin(), fronts.end(),
                     [&lower](std::string_view front) { return lower.starts_with(front); });
}

bool isInside(const std::string& label, std::string_view word) {
  return asciiLowercase(label).find(word) != std::string::npos;
}

bool isOnHomeScreen(const PageView& page) {
  if (page.arrival.way == Way::closed) return true;
  const bool opensFirst =
      page.steps.size() == 1 && phoneCommand(page.steps[0]) != PhoneCommand::other;
  return page.arrival.way == Way::start && opensFirst &&
         phoneCommand(page.steps[0]) != PhoneCommand::goBack;
}

bool takesText(const PageView& page) {
  return page.has(InteractionType::input) || page.named(NamedPart::Kind::field) ||
         (page.has(InteractionType::userDefined) && page.speaksOf({"fill", "form", "address"}));
}

PageKind kindWithText(const PageView& page) {
  const auto field = page.named(NamedPart::Kind::field);
  if (page.arrival.way == Way::search || (field && isInside(*field, "search"))) {
    return PageKind::search;
  }
  const bool asks = begins(page.arrival.label, {"add ", "enter ", "rename ", "new "});
  return asks && !field ? PageKind::question : PageKind::form;
}

PageKind rootOf(const PageView& page) {
  return page.aboutWalks ? PageKind::walks : PageKind::shopFront;
}

}  // namespace

bool PageView::speaksOf(std::initializer_list<std::string_view> words) const {
  return std::any_of(steps.begin(), steps.end(), [words](const StepWords& step) {
    return !step.isOtherSteps() && step.speaksOf(words);
  });
}

bool PageView::has(InteractionType type) const {
  return std::any_of(steps.begin(), steps.end(),
                     [type](const StepWords& step) { return step.is(type); });
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
  if (way == Way::row && page.has(InteractionType::tap) &&
      !page.speaksOf({"product", "products"}) &&
      (page.aboutWalks || begins(label, {"unit", "language", "currency", "sort"}))) {
    return PageKind::choice;
  }
  if (way == Way::start || way == Way::opened) return rootOf(page);
  if (page.speaksOf({"grid", "catalogue", "catalog"})) return rootOf(page);
  const bool afterResults = way == Way::button && isInside(label, "results");
  if (afterResults || way == Way::row ||
      page.speaksOf({"list", "lists", "listed", "every", "each"}) ||
      page.named(NamedPart::Kind::page)) {
    return page.aboutWalks ? PageKind::walks : PageKind::list;
  }
  if (way == Way::tab) return isInside(label, "map") ? PageKind::recording : rootOf(page);
  return PageKind::same;
}

std::optional<std::string> titleOf(const PageView& page, PageKind kind) {
  const std::string& label = page.arrival.label;
  if (kind == PageKind::homeScreen || kind == PageKind::question || kind == PageKind::same) {
    return std::nullopt;
  }
  if (const auto named = page.named(NamedPart::Kind::page)) return named;
  if (kind == PageKind::form && page.has(InteractionType::userDefined)) {
    for (const auto& step : page.steps) {
      const std::string& text = step.description();
      if (step.is(InteractionType::userDefined) && begins(text, {"fill "})) {
        return capitalised(std::string_view(text).substr(5));
      }
    }
  }
  switch (page.arrival.way) {
    case Way::tab:
    case Way::product:
    case Way::row:
      return label;
    case Way::search:
      return "Search";
    case Way::button:
      if (isInside(label, "results")) return "Results";
      // What only finishes something leads back to where it was begun.
      if (begins(label, {"sign",  "log",    "redeem", "remove", "delete", "save",    "done",
                         "ok",    "add",    "place",  "pay",    "submit", "confirm", "continue",
                         "close", "cancel", "not",    "stop",   "apply",  "send",    "check"})) {
        break;
      }
      return label;
    default:
      break;
  }
  if (kind == PageKind::cart) return "Cart";
  if (kind == PageKind::shopFront || kind == PageKind::walks) return std::string();
  return std::nullopt;
}

}  // namespace corvane::standin
