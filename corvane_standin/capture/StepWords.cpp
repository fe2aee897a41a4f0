#include "corvane_standin/capture/StepWords.h"

#include <algorithm>
#include <array>
#include <regex>
#include <utility>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

using Kind = Element::Kind;

/// What people call the parts of a screen.
constexpr std::array<std::pair<std::string_view, Kind>, 8> kindWords{
    {{"button", Kind::button},
     {"tab", Kind::tab},
     {"field box", Kind::field},
     {"product item", Kind::goods},
     {"row entry cell option link", Kind::row},
     {"heading title text message list page screen", Kind::heading},
     {"handle slider", Kind::slider},
     {"switch toggle", Kind::toggle}}};

std::optional<Kind> kindOf(std::string_view word) {
  const auto* const found = std::ranges::find_if(
      kindWords, [word](const auto& each) { return isOneOf(each.first, word); });
  return found == kindWords.end() ? std::nullopt : std::optional(found->second);
}

std::vector<NamedPart> quotedParts(const std::string& text) {
  // The word before it, the name in one of three kinds of quotes and the word after it. An
  // apostrophe, which has a letter before it or after it, is no quote.
  static const std::regex quoted(
      R"re((\w*)(?: of)? *(?:"([^"]*)"|“(.*?)”|\B'(.+?)'\B)(?= *(\w*)))re");
  std::vector<NamedPart> parts;
  for (std::sregex_iterator at(text.begin(), text.end(), quoted), end; at != end; ++at) {
    const auto& match = *at;
    const auto before = kindOf(asciiLowercase(match.str(1)));
    std::string label = match.str(2) + match.str(3) + match.str(4);
    if (label.empty()) continue;
    parts.push_back({before ? before : kindOf(asciiLowercase(match.str(5))), std::move(label)});
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
  return {{kindOf(asciiLowercase(match.str(2))), capitalised(match.str(1))}};
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

}  // namespace corvane::standin
