#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// The one table of a vocabulary. Specialise it for an enumeration E with
///   static constexpr std::array rows{Row{E::first, "first"}, ...};
/// in declaration order; a row is any aggregate with `value` and `rawValue` and may carry more
/// columns. Parsing, listing, decoding and encoding all come from the table.
template <class E>
struct Vocabulary;

/// The plain row of a vocabulary.
template <class E>
struct VocabularyRow {
  E value;
  std::string_view rawValue;
};

template <class E>
concept HasVocabulary = requires { Vocabulary<E>::rows; };

/// The row of `value`.
template <HasVocabulary E>
[[nodiscard]] constexpr const auto& vocabularyRow(E value) {
  return *std::find_if(Vocabulary<E>::rows.begin(), Vocabulary<E>::rows.end(),
                       [value](const auto& row) { return row.value == value; });
}

template <HasVocabulary E>
[[nodiscard]] constexpr std::string_view rawValue(E value) {
  return vocabularyRow(value).rawValue;
}

/// The value that `raw` names exactly, if any.
template <HasVocabulary E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(std::string_view raw) {
  for (const auto& row : Vocabulary<E>::rows) {
    if (row.rawValue == raw) return row.value;
  }
  return std::nullopt;
}

/// Accepts every value of a vocabulary.
struct EveryValue {
  constexpr bool operator()(auto) const { return true; }
};

/// The raw values of the values that `keep` accepts, in declaration order, joined with `separator`.
template <HasVocabulary E, class Keep = EveryValue>
[[nodiscard]] std::string joinedRawValues(std::string_view separator, Keep keep = {}) {
  std::string joined;
  for (const auto& row : Vocabulary<E>::rows) {
    if (!keep(row.value)) continue;
    if (!joined.empty()) joined += separator;
    joined += row.rawValue;
  }
  return joined;
}

}  // namespace corvane
