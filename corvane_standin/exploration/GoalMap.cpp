#include "corvane_standin/exploration/GoalMap.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/runs/StepText.h"

namespace corvane::standin {

namespace {

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

/// "2. Open the cart" and "- Open the cart" without what they begin with.
std::string_view withoutBullet(std::string_view line) {
  const auto digits = std::min(line.find_first_not_of("0123456789"), line.size());
  if (digits > 0 && digits < line.size() && (line[digits] == '.' || line[digits] == ')')) {
    return trimWhitespace(line.substr(digits + 1));
  }
  for (const std::string_view bullet : {"- ", "* ", "• "}) {
    if (line.starts_with(bullet)) return trimWhitespace(line.substr(bullet.size()));
  }
  return line;
}

/// Cuts at every separator in turn, but never inside double quotes.
std::vector<std::string> cutIntoClauses(std::string_view text) {
  constexpr std::array<std::string_view, 5> separators{", then ", " then ", ", and ", "; ", ", "};
  std::vector<std::string> clauses(1);
  bool inQuotes = false;
  while (!text.empty()) {
    const auto separator =
        std::find_if(separators.begin(), separators.end(),
                     [text](std::string_view each) { return text.starts_with(each); });
    if (!inQuotes && separator != separators.end()) {
      clauses.emplace_back();
      text.remove_prefix(separator->size());
      continue;
    }
    if (text.front() == '"') inQuotes = !inQuotes;
    clauses.back() += text.front();
    text.remove_prefix(1);
  }
  std::erase_if(clauses, [](const auto& clause) { return trimWhitespace(clause).empty(); });
  return clauses;
}

std::string firstWords(std::string_view text) {
  constexpr std::size_t most = 6;
  const auto words = split(text, " ");
  std::string name;
  for (std::size_t i = 0; i < std::min(most, words.size()); ++i) {
    name += (i == 0 ? "" : " ") + std::string(words[i]);
  }
  while (name.ends_with(',') || name.ends_with('.') || name.ends_with(':')) name.pop_back();
  return name;
}

Goal parseGoal(std::string_view line) {
  constexpr std::size_t longestLabel = 60;
  const auto colon = line.find(": ");
  const bool isLabelled = colon != std::string_view::npos && colon <= longestLabel &&
                          line.substr(0, colon).find('"') == std::string_view::npos;
  const auto body = isLabelled ? trimWhitespace(line.substr(colon + 2)) : line;
  Goal goal;
  goal.clauses = cutIntoClauses(body);
  goal.name = capitalized(isLabelled || goal.clauses.empty() ? std::string(line.substr(0, colon))
                                                             : firstWords(goal.clauses.front()));
  for (auto& clause : goal.clauses) {
    if (clause.ends_with('.')) clause.pop_back();
  }
  return goal;
}

}  // namespace

std::vector<Goal> parseGoals(std::string_view text) {
  const auto lines = split(text, "\n");
  std::vector<Goal> goals;
  for (const auto line : lines) {
    const bool isHeading = line.ends_with(':') && lines.size() > 1;
    const auto goal = withoutBullet(line);
    if (!isHeading && !goal.empty()) goals.push_back(parseGoal(goal));
  }
  if (goals.empty() && !lines.empty()) goals.push_back(parseGoal(lines.front()));
  return goals;
}

}  // namespace corvane::standin
