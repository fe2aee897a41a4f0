#pragma once

#include <concepts>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// The one table of a vocabulary. Specialise it for an enumeration E with
///   static constexpr std::array rows{Row{E::first, "first"}, ...};
/// one row for each enumerator, in declaration order; a row is any aggregate with `value` and
/// `rawValue` and may carry more columns. Parsing, listing, decoding and encoding all come from the
/// table. A table with a row too few, too many or out of order does not compile.
template <class E>
struct Vocabulary;

/// The plain row of a vocabulary.
template <class E>
struct VocabularyRow {
  E value;
  std::string_view rawValue;
};

/// A column that every row has to fill: an aggregate that leaves it out does not compile.
template <class T>
struct Required {
  T value;

  template <std::convertible_to<T> Given>
  constexpr Required(Given given) : value(given) {}
  constexpr operator T() const { return value; }
};

template <class E>
concept HasVocabulary = requires { Vocabulary<E>::rows; };

namespace vocabulary_detail {

/// Whether an enumerator has this value: compilers spell others as a cast, "(E)7".
template <auto value>
[[nodiscard]] consteval bool isEnumerator() {
  const std::string_view spelled = __PRETTY_FUNCTION__;
  const std::string_view argument = spelled.substr(spelled.find("value = ") + 8);
  return !argument.starts_with('(');
}

template <class E>
[[nodiscard]] consteval bool isInOrder() {
  std::size_t position = 0;
  for (const auto& row : Vocabulary<E>::rows) {
    if (row.value != static_cast<E>(position++) || row.rawValue.empty()) return false;
  }
  return true;
}

/// Whether the table of E has one row for each enumerator, in their order.
template <class E>
inline constexpr bool isComplete =
    isInOrder<E>() && isEnumerator<static_cast<E>(Vocabulary<E>::rows.size() - 1)>() &&
    !isEnumerator<static_cast<E>(Vocabulary<E>::rows.size())>();

}  // namespace vocabulary_detail

/// The rows of a vocabulary.
template <HasVocabulary E>
[[nodiscard]] constexpr const auto& vocabularyRows() {
  static_assert(vocabulary_detail::isComplete<E>,
                "a vocabulary has one row for each enumerator, in their order");
  return Vocabulary<E>::rows;
}

/// The row of `value`.
template <HasVocabulary E>
[[nodiscard]] constexpr const auto& vocabularyRow(E value) {
  return vocabularyRows<E>()[static_cast<std::size_t>(value)];
}

template <HasVocabulary E>
[[nodiscard]] constexpr std::string_view rawValue(E value) {
  return vocabularyRow(value).rawValue;
}

/// The value that `raw` names exactly, if any.
template <HasVocabulary E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(std::string_view raw) {
  for (const auto& row : vocabularyRows<E>()) {
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
  for (const auto& row : vocabularyRows<E>()) {
    if (!keep(row.value)) continue;
    if (!joined.empty()) joined += separator;
    joined += row.rawValue;
  }
  return joined;
}

}  // namespace corvane
