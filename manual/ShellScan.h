#pragma once

#include <string>

#include "manual/ProgramManual.h"

namespace corvane::manual {

/// The part that the scripts of bash and zsh have in common: goes through the words before the
/// cursor, `words[first]` to `words[last - 1]`, and leaves what is known of the word at the cursor
/// in `command`, `place` (how many arguments the command has so far), `project` (the first of
/// them), `kind` (what sort of value is expected) and `options` (what can be written in its place).
struct ShellScan {
  /// How the script calls the list of words, e.g. "COMP_WORDS".
  std::string words;
  std::string first;
  std::string last;
  /// The word in `word` without its quotes.
  std::string unquoted;

  [[nodiscard]] std::string script(const ProgramManual& program) const;
};

/// The command line that lists the values of a kind, "names tests \"$project\""; empty for a kind
/// that has none.
[[nodiscard]] std::string listingOf(std::string_view kind);

}  // namespace corvane::manual
