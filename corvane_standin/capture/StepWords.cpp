#include "corvane_standin/capture/StepWords.h"

#include <algorithm>
#include <array>
#include <utility>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

using Kind = NamedPart::Kind;

constexpr std::array kindWords{
    std::pair(std::string_view("button"), Kind::button),
    std::pair(std::string_view("tab"), Kind::tab),
    std::pair(std::string_view("field"), Kind::field),
    std::pair(std::string_view("box"), Kind::field),
    std::pair(std::string_view("product"), Kind::product),
    std::pair(std::string_view("item"), Kind::product),
    std::pair(std::string_view("row"), Kind::row),
    std::pair(std::string_view("entry"), Kind::row),
    std::pair(std::string_view("cell"), Kind::row),
    std::pair(std::string_view("option"), Kind::row),
    std::pair(std::string_view("link"), Kind::row),
    std::pair(std::string_view("page"), Kind::page),
    std::pair(std::string_view("screen"), Kind::page),
    std::pair(std::string_view("heading"), Kind::text),
    std::pair(std::string_view("title"), Kind::text),
    std::pair(std::string_view("text"), Kind::text),
    std::pair(std::string_view("message"), Kind::text),
    std::pair(std::string_view("list"), Kind::text),
    std::pair(std::string_view("handle"), Kind::slider),
    std::pair(std::string_view("slider"), Kind::slider),
    std::pair(std::string_view("switch"), Kind::toggle),
    std::pair(std::string_view("toggle"), Kind::toggle),
};

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c & 0x80) != 0;
}

std::optional<Kind> kindOf(std::string_view word) {
  for (const auto& [name, kind] : kindWords) {
    if (word == name) return kind;
  }
  return std::nullopt;
}

std::vector<std::string_view> wordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  while (!text.empty()) {
    const auto begin = std::find_if(text.begin(), text.end(), isLetter);
    const auto end = std::find_if_not(begin, text.end(), isLetter);
    if (begin != end)
      words.push_back(text.substr(static_cast<std::size_t>(begin - text.begin()),
                                  static_cast<std::size_t>(end - begin)));
    text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
  }
  return words;
}

/// The kind that the words around a quoted name give it: the one before it, as in "the handle of
/// 'Price'", else the one right after it.
Kind kindFrom(std::string_view before, std::string_view after) {
  constexpr std::array<std::string_view, 8> links{"of",     "the",      "named", "called",
                                                  "titled", "labelled", "for",   "with"};
  auto wordsBefore = wordsOf(before);
  while (!wordsBefore.empty() &&
         std::find(links.begin(), links.end(), wordsBefore.back()) != links.end()) {
    wordsBefore.pop_back();
  }
  if (!wordsBefore.empty()) {
    if (const auto kind = kindOf(wordsBefore.back())) return *kind;
  }
  const auto wordsAfter = wordsOf(after);
  return wordsAfter.empty() ? Kind::unsaid : kindOf(wordsAfter.front()).value_or(Kind::unsaid);
}

struct Quote {
  std::string_view open;
  std::string_view close;
};

constexpr std::array quotes{Quote{"\"", "\""}, Quote{"“", "”"}, Quote{"‘", "’"}, Quote{"'", "'"}};

/// Where a quote that begins at `start` ends, when it does; an apostrophe begins and ends none.
std::optional<std::size_t> endOfQuote(std::string_view text, std::size_t start,
                                      const Quote& quote) {
  if (start > 0 && isLetter(text[start - 1]) && quote.open == "'") return std::nullopt;
  auto end = start;
  do {
    end = text.find(quote.close, end + quote.open.size());
    if (end == std::string_view::npos) return std::nullopt;
  } while (quote.close == "'" && end + 1 < text.size() && isLetter(text[end + 1]));
  return end;
}

std::string_view withoutFront(std::string_view text,
                              std::initializer_list<std::string_view> fronts) {
  for (const auto front : fronts) {
    if (asciiLowercase(text.substr(0, front.size())) == front) return text.substr(front.size());
  }
  return text;
}

/// Nobody reads more on a screen.
std::string shortened(std::string_view description) {
  constexpr std::size_t longest = 400;
  return toValidUtf8(description.substr(0, longest));
}

}  // namespace

std::string capitalised(std::string_view text) {
  std::string result(text);
  if (!result.empty() && result.front() >= 'a' && result.front() <= 'z') {
    result.front() = static_cast<char>(result.front() - 'a' + 'A');
  }
  return result;
}

bool beginsWithVerb(std::string_view label) {
  constexpr std::array<std::string_view, 44> verbs{
      "accept",  "add",      "allow",  "apply",  "buy",   "cancel", "check",  "clear",  "close",
      "confirm", "continue", "create", "delete", "deny",  "done",   "edit",   "enter",  "filter",
      "finish",  "later",    "log",    "next",   "no",    "not",    "ok",     "pay",    "place",
      "record",  "redeem",   "refine", "remove", "reset", "retry",  "save",   "search", "send",
      "share",   "show",     "sign",   "skip",   "start", "stop",   "submit", "yes"};
  const std::string lower = asciiLowercase(label);
  const auto words = wordsOf(lower);
  return !words.empty() && std::find(verbs.begin(), verbs.end(), words.front()) != verbs.end();
}

StepWords::StepWords(std::string_view interactionType, std::string_view description)
    : interaction(fromRawValue<InteractionType>(interactionType)),
      whole(shortened(description)),
      lower(asciiLowercase(whole)) {
  // What is typed is no description, and what other tests do is not on this screen.
  if (!is(InteractionType::input) && !isOtherSteps()) nameQuoted();
  if (is(InteractionType::tap) && parts.empty()) nameUnquoted();
  collectProse();
}

void StepWords::nameQuoted() {
  const std::string_view text = whole;
  std::size_t from = 0;
  while (from < text.size()) {
    std::size_t next = from + 1;
    for (const auto& quote : quotes) {
      if (!text.substr(from).starts_with(quote.open)) continue;
      const auto end = endOfQuote(text, from, quote);
      if (!end) continue;
      const auto begin = from + quote.open.size();
      next = *end + quote.close.size();
      if (*end == begin) break;
      const std::string_view label = text.substr(begin, *end - begin);
      const auto kind =
          kindFrom(std::string_view(lower).substr(0, from), std::string_view(lower).substr(next));
      parts.push_back({kind, std::string(label)});
      break;
    }
    from = next;
  }
}

void StepWords::nameUnquoted() {
  std::string_view text = withoutFront(whole, {"tap on ", "tap ", "press ", "click "});
  text = withoutFront(text, {"the ", "a "});
  for (const std::string_view word :
       {" in the ", " at the ", " on the ", " under ", " below ", " above ", "."}) {
    text = text.substr(0, asciiLowercase(text).find(word));
  }
  NamedPart part{Kind::unsaid, {}};
  if (lower.find("magnif") != std::string::npos || lower.find("search icon") != std::string::npos) {
    part.kind = Kind::searchIcon;
  }
  const auto words = wordsOf(text);
  if (words.size() > 1) {
    if (const auto kind = kindOf(words.back())) {
      part.kind = *kind;
      text.remove_suffix(text.size() - static_cast<std::size_t>(words.back().data() - text.data()));
    }
  }
  part.label = capitalised(trimWhitespace(text));
  if (!part.label.empty()) parts.push_back(std::move(part));
}

void StepWords::collectProse() {
  prose = lower;
  for (const auto& part : parts) {
    const std::string label = asciiLowercase(part.label);
    if (part.kind != Kind::tab && !label.starts_with("add to")) continue;
    if (const auto at = prose.find(label); at != std::string::npos) prose.erase(at, label.size());
  }
}

bool StepWords::speaksOf(std::initializer_list<std::string_view> words) const {
  return std::any_of(words.begin(), words.end(), [this](std::string_view word) {
    for (auto at = prose.find(word); at != std::string::npos; at = prose.find(word, at + 1)) {
      const bool begins = at == 0 || !isLetter(prose[at - 1]);
      const auto end = at + word.size();
      if (begins && (end >= prose.size() || !isLetter(prose[end]))) return true;
    }
    return false;
  });
}

}  // namespace corvane::standin
