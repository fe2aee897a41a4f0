#include <algorithm>
#include <array>
#include <utility>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/steps/Steps.h"

namespace corvane::standin {

namespace {

using Kind = NamedPart::Kind;

struct KindWords {
  Kind kind;
  /// What people call such a part, separated by spaces.
  std::string_view words;
};

constexpr std::array kindWords{
    KindWords{Kind::button, "button"},
    KindWords{Kind::tab, "tab"},
    KindWords{Kind::field, "field box"},
    KindWords{Kind::product, "product item"},
    KindWords{Kind::row, "row entry cell option link"},
    KindWords{Kind::page, "page screen"},
    KindWords{Kind::text, "heading title text message list"},
    KindWords{Kind::slider, "handle slider"},
    KindWords{Kind::toggle, "switch toggle"},
};

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '_';
}

/// Cuts `text` before its next "$" and behind the name that follows it. `found` is told the text
/// before and, unless there is no "$" any more, the name.
template <class Found>
void cutAtPlaceholders(std::string_view text, Found found) {
  while (true) {
    const auto dollar = text.find('$');
    if (dollar == std::string_view::npos) return found(text, std::nullopt);
    const auto before = text.substr(0, dollar);
    text.remove_prefix(dollar + 1);
    const auto nameEnd = std::find_if_not(text.begin(), text.end(), isNameCharacter);
    const auto name = text.substr(0, static_cast<std::size_t>(nameEnd - text.begin()));
    found(before, std::optional(name));
    text.remove_prefix(name.size());
  }
}

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c & 0x80) != 0;
}

std::optional<Kind> kindOf(std::string_view word) {
  for (const auto& [kind, words] : kindWords) {
    if (isOneOf(words, word)) return kind;
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
  constexpr std::string_view links = "of the named called titled labelled for with";
  auto wordsBefore = wordsOf(before);
  while (!wordsBefore.empty() && isOneOf(links, wordsBefore.back())) {
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

std::vector<std::string_view> split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const auto end = text.find(separator);
    const auto part = trimWhitespace(text.substr(0, end));
    if (!part.empty()) parts.push_back(part);
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + separator.size());
  }
}

bool isOneOf(std::string_view words, std::string_view word) {
  const auto each = split(words);
  return std::find(each.begin(), each.end(), word) != each.end();
}

std::string capitalised(std::string text) {
  if (!text.empty() && text.front() >= 'a' && text.front() <= 'z') {
    text.front() = static_cast<char>(text.front() - 'a' + 'A');
  }
  return text;
}

std::vector<std::string> placeholdersIn(std::string_view text) {
  std::vector<std::string> names;
  cutAtPlaceholders(text, [&](std::string_view, std::optional<std::string_view> name) {
    if (name && !name->empty() && !isDigit(name->front())) names.emplace_back(*name);
  });
  return names;
}

std::string substituteParameters(std::string_view text,
                                 const std::map<std::string, std::string>& values) {
  std::string substituted;
  cutAtPlaceholders(text, [&](std::string_view before, std::optional<std::string_view> name) {
    substituted += before;
    if (!name) return;
    const auto value = values.find(std::string(*name));
    substituted += value == values.end() ? "$" + std::string(*name) : value->second;
  });
  return substituted;
}

bool beginsWithVerb(std::string_view label) {
  constexpr std::string_view verbs =
      "accept add allow apply buy cancel check clear close confirm continue create delete deny "
      "done edit enter filter finish later log next no not ok pay place record redeem refine "
      "remove reset retry save search send share show sign skip start stop submit yes";
  const std::string lower = asciiLowercase(label);
  const auto words = wordsOf(lower);
  return !words.empty() && isOneOf(verbs, words.front());
}

StepWords::StepWords(std::string_view interactionType, std::string_view description)
    : whole(shortened(description)), lower(asciiLowercase(whole)) {
  if (const auto type = fromRawValue<InteractionType>(interactionType)) does = stepType(*type).act;
  // What is typed is no description, and what other tests do is not on this screen.
  if (!is(ScreenAct::type) && !is(ScreenAct::otherSteps)) nameQuoted();
  if (is(ScreenAct::tap) && parts.empty()) nameUnquoted();
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
  part.label = capitalised(std::string(trimWhitespace(text)));
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
