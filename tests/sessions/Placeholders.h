#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/json/Date.h"

namespace corvane::testing {

/// What the {{placeholders}} of a script stand for:
///   {{home}} and other fixed names  texts that are known from the start
///   {{uuid:NAME}}                   a UUID in lower case; the same one wherever NAME is the same
///   {{date}}                        a date-time between the session's start and now
///   {{number:FROM..TO}}             a whole number in that range
class Placeholders {
 public:
  explicit Placeholders(std::map<std::string, std::string, std::less<>> fixed)
      : known(std::move(fixed)) {}

  /// Where a text parts from what was expected.
  struct Difference {
    /// What was expected, as far as it is known.
    std::string expected;
    /// How many bytes the two have in common at their beginning.
    std::size_t position;
  };

  /// Compares a text with a pattern; nothing when it fits. Names met for the first time stand for
  /// what was found in their place from then on, provided that the whole text fits. Throws
  /// std::runtime_error for a placeholder that does not exist.
  [[nodiscard]] std::optional<Difference> match(std::string_view pattern, std::string_view text);
  /// The pattern with what is known put in. Throws std::runtime_error for anything else.
  [[nodiscard]] std::string expand(std::string_view pattern) const;

 private:
  using Known = std::map<std::string, std::string, std::less<>>;

  [[nodiscard]] std::optional<std::string> find(std::string_view name, std::string_view text,
                                                Known& found) const;

  Known known;
  Date start = currentDate();
};

}  // namespace corvane::testing
