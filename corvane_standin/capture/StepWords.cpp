#include "corvane_standin/capture/StepWords.h"

#include <algorithm>
#include <array>
#include <initializer_list>
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

constexpr std::array<std::pair<std::string_view, std::string_view>, 4> quotes{
    {{"\"", "\""}, {"“", "”"}, {"‘", "’"}, {"'", "'"}}};

std::optional<Kind> kindOf(std::string_view word) {
  const auto* const found = std::ranges::find_if(
      kindWords, [word](const auto& each) { return isOneOf(each.first, word); });
  return found == kindWords.end() ? std::nullopt : std::optional(found->second);
}

/// The kind that the words around a quoted name give it: the one before it, as in "the handle of
/// 'Price'", else the one right after it.
std::optional<Kind> kindFrom(std::string_view before, std::string_view after) {
  auto wordsBefore = split(before);
  while (!wordsBefore.empty() && isOneOf("of the named called labelled", wordsBefore.back())) {
    wordsBefore.pop_back();
  }
  const auto kind = wordsBefore.empty() ? std::nullopt : kindOf(wordsBefore.back());
  const auto wordsAfter = split(after);
  return kind || wordsAfter.empty() ? kind : kindOf(wordsAfter.front());
}

/// Whether what is at `at` stands in or at the end of a word.
bool isLetter(std::string_view text, std::size_t at) {
  if (at >= text.size()) return false;
  const char c = text[at];
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c & 0x80) != 0;
}

std::vector<NamedPart> quotedParts(std::string_view text) {
  std::vector<NamedPart> parts;
  const std::string lower = asciiLowercase(text);
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto* const quote = std::ranges::find_if(
        quotes, [&](const auto& each) { return text.substr(at).starts_with(each.first); });
    // An apostrophe begins and ends no quote.
    if (quote == quotes.end() || (text[at] == '\'' && isLetter(text, at - 1))) continue;
    const auto& [open, close] = *quote;
    auto end = text.find(close, at + open.size());
    while (close == "'" && end != text.npos && isLetter(text, end + 1)) {
      end = text.find(close, end + 1);
    }
    if (end == text.npos) continue;
    const auto begin = at + open.size();
    const auto rest = end + close.size();
    const std::string_view around = lower;
    if (end > begin) {
      parts.push_back({kindFrom(around.substr(0, at), around.substr(rest)),
                       std::string(text.substr(begin, end - begin))});
    }
    at = rest - 1;
  }
  return parts;
}

/// What a tap such as "Tap the Log in button at the top" names without quotes.
std::vector<NamedPart> unquotedPart(std::string_view text) {
  for (const std::string_view front : {"tap ", "press ", "click ", "on ", "the ", "a "}) {
    if (asciiLowercase(text.substr(0, front.size())) == front) text.remove_prefix(front.size());
  }
  for (const std::string_view behind : {" in the ", " at the ", " on the "}) {
    text = text.substr(0, asciiLowercase(text).find(behind));
  }
  NamedPart part;
  const auto words = split(text);
  if (words.size() > 1) part.kind = kindOf(asciiLowercase(words.back()));
  if (part.kind) {
    text.remove_suffix(text.size() - static_cast<std::size_t>(words.back().data() - text.data()));
  }
  part.label = capitalised(std::string(trimWhitespace(text)));
  return part.label.empty() ? std::vector<NamedPart>() : std::vector{std::move(part)};
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
