#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane::ctl {

/// Foreign text as one line that is safe to show: white space runs become one blank, other control
/// characters are spelled out, bytes that are not UTF-8 are replaced.
[[nodiscard]] std::string oneLine(std::string_view text);

/// Foreign text of any number of lines that is safe to show: its lines end in line feeds, a tab
/// becomes a blank, other control characters are spelled out, bytes that are not UTF-8 are
/// replaced, and white space at the ends is left off.
[[nodiscard]] std::string cleanLines(std::string_view text);

/// The most columns that `text`, which is valid UTF-8, takes on any terminal.
[[nodiscard]] std::size_t widestColumns(std::string_view text);

/// The front of `text`, which is valid UTF-8, that surely fits into `columns` columns, with "…" at
/// its end when something is left off.
[[nodiscard]] std::string cutToColumns(std::string_view text, std::size_t columns);

/// `text` with line feeds in the place of blanks, so that its lines surely fit between column
/// `indent` and column `columns`, as far as its words are short enough. Lines after the first begin
/// with `indent` blanks.
[[nodiscard]] std::string wrapToColumns(std::string_view text, std::size_t columns,
                                        std::size_t indent);

/// A length of time for people: "0.4 s", "12 s", "2 min 5 s".
[[nodiscard]] std::string displaySeconds(double seconds);

/// The first sentence of `text`: up to a full stop, question or exclamation mark that is followed
/// by the end or by white space and no small letter, or up to an empty line.
[[nodiscard]] std::string_view firstSentence(std::string_view text);

}  // namespace corvane::ctl
