#include "CorvaneCore/text/NearestName.h"

#include <algorithm>
#include <array>

#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

/// A number for each character of `text`, in the form in which names are compared.
std::u32string comparable(std::string_view text) {
  const std::string folded = foldCase(toValidUtf8(text));
  std::u32string characters;
  for (const char byte : folded) {
    const auto unit = static_cast<unsigned char>(byte);
    constexpr unsigned continuation = 0x80;
    constexpr unsigned continuationEnd = 0xC0;
    if (unit >= continuation && unit < continuationEnd && !characters.empty()) {
      characters.back() = (characters.back() << 6U) | (unit & 0x3FU);
    } else {
      characters.push_back(unit);
    }
  }
  return characters;
}

/// How many letters must be changed, added, left out or swapped with the next one to make one text
/// of the other (Damerau and Levenshtein, every pair swapped once).
std::size_t distance(const std::u32string& a, const std::u32string& b) {
  using Row = std::vector<std::size_t>;
  std::array<Row, 3> rows{Row(b.size() + 1), Row(b.size() + 1), Row(b.size() + 1)};
  for (std::size_t j = 0; j <= b.size(); ++j) rows[1][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    auto& [before, above, row] = rows;
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t change = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, change});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        row[j] = std::min(row[j], before[j - 2] + 1);
      }
    }
    std::rotate(rows.begin(), rows.begin() + 1, rows.end());
  }
  return rows[1][b.size()];
}

}  // namespace

std::optional<std::string> nearestName(std::string_view given,
                                       const std::vector<std::string>& known) {
  // A name much longer than any that a person types is not worth the time.
  constexpr std::size_t longestCompared = 500;
  const std::u32string wanted = comparable(given.substr(0, longestCompared));
  std::size_t nearest = std::max<std::size_t>(wanted.size() / 3, 1);
  const std::string* found = nullptr;
  const std::string* beginning = nullptr;
  for (const std::string& name : known) {
    const std::u32string candidate = comparable(name.substr(0, longestCompared));
    if (!wanted.empty() && !beginning && candidate.starts_with(wanted)) beginning = &name;
    const std::size_t changes = distance(wanted, candidate);
    // What shares no letter is no misspelling, however short it is.
    if (changes >= std::max(wanted.size(), candidate.size()) && changes > 0) continue;
    if (changes < nearest || (changes == nearest && !found)) {
      nearest = changes;
      found = &name;
    }
  }
  if (!found) found = beginning;
  return found ? std::optional(*found) : std::nullopt;
}

std::string didYouMean(std::string_view given, const std::vector<std::string>& known) {
  const auto nearest = nearestName(given, known);
  return nearest ? " Did you mean '" + escapeControls(toValidUtf8(*nearest)) + "'?" : std::string();
}

}  // namespace corvane
