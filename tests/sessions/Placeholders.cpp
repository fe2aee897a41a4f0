#include "tests/sessions/Placeholders.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

#include "CorvaneCore/text/Uuid.h"

namespace corvane::testing {

namespace {

constexpr std::string_view opening = "{{";
constexpr std::string_view closing = "}}";

/// The next piece of a pattern: plain text, then possibly a placeholder's name.
struct Piece {
  std::string_view text;
  std::optional<std::string_view> name;
};

Piece takePiece(std::string_view& pattern) {
  const auto start = pattern.find(opening);
  const auto end = pattern.find(closing, start);
  if (start == std::string_view::npos || end == std::string_view::npos) {
    return {std::exchange(pattern, {}), std::nullopt};
  }
  const Piece piece{pattern.substr(0, start),
                    pattern.substr(start + opening.size(), end - start - opening.size())};
  pattern.remove_prefix(end + closing.size());
  return piece;
}

std::size_t commonLength(std::string_view left, std::string_view right) {
  const auto ends = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
  return static_cast<std::size_t>(ends.first - left.begin());
}

[[noreturn]] void failUnknown(std::string_view name) {
  throw std::runtime_error("nothing is known of {{" + std::string(name) + "}}");
}

std::optional<std::string> findUuid(std::string_view text) {
  const std::string_view front = text.substr(0, 36);
  const auto id = parseRequestId(front);
  return id == front ? id : std::nullopt;
}

std::optional<std::string> findDate(std::string_view text, Date earliest) {
  const std::string_view front = text.substr(0, 20);
  const auto date = parseDate(front);
  const bool fits = date && *date >= earliest && *date <= currentDate() && front.ends_with('Z');
  return fits ? std::optional(std::string(front)) : std::nullopt;
}

/// `range` reads FROM..TO.
std::optional<std::string> findNumber(std::string_view text, std::string_view range) {
  const auto dots = range.find("..");
  if (dots == std::string_view::npos) failUnknown(range);
  long long number = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), number).ptr;
  const bool fits = end != text.data() &&
                    number >= std::stoll(std::string(range.substr(0, dots))) &&
                    number <= std::stoll(std::string(range.substr(dots + 2)));
  return fits ? std::optional(std::string(text.data(), end)) : std::nullopt;
}

}  // namespace

std::optional<Placeholders::Difference> Placeholders::match(std::string_view pattern,
                                                            std::string_view text) {
  Known found = known;
  std::string expected;
  while (!pattern.empty()) {
    const std::string_view before = pattern;
    const Piece piece = takePiece(pattern);
    const std::string_view rest = text.substr(std::min(expected.size(), text.size()));
    const auto value = piece.name && rest.starts_with(piece.text)
                           ? find(*piece.name, rest.substr(piece.text.size()), found)
                           : std::nullopt;
    if (!rest.starts_with(piece.text) || (piece.name && !value)) {
      expected += before;
      return Difference{expected, commonLength(expected, text)};
    }
    expected.append(piece.text).append(value.value_or(""));
    const auto common = commonLength(expected, text);
    if (common < expected.size()) return Difference{expected.append(pattern), common};
  }
  if (expected.size() < text.size()) return Difference{expected, expected.size()};
  known = std::move(found);
  return std::nullopt;
}

std::string Placeholders::expand(std::string_view pattern) const {
  std::string text;
  while (!pattern.empty()) {
    const Piece piece = takePiece(pattern);
    text += piece.text;
    if (!piece.name) continue;
    const auto value = known.find(*piece.name);
    if (value == known.end()) failUnknown(*piece.name);
    text += value->second;
  }
  return text;
}

/// What the placeholder stands for at the front of `text`: a known text, whether or not it stands
/// there, or one of the right form that is found there.
std::optional<std::string> Placeholders::find(std::string_view name, std::string_view text,
                                              Known& found) const {
  if (const auto value = found.find(name); value != found.end()) return value->second;
  if (name.starts_with("uuid:")) {
    auto id = findUuid(text);
    if (id) found.emplace(name, *id);
    return id;
  }
  if (name == "date") return findDate(text, start);
  if (name.starts_with("number:")) return findNumber(text, name.substr(7));
  failUnknown(name);
}

}  // namespace corvane::testing
