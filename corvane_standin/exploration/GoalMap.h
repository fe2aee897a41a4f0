#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvane::standin {

/// One bounded goal out of the text that an agent sent.
struct Goal {
  /// What the goal is called: its label, else its first words.
  std::string name;
  /// What is to be done and seen, in the agent's words, in their order.
  std::vector<std::string> clauses;
};

/// The goals of a text: one per line that is neither empty nor a heading over others. Numbers and
/// bullets at the start of a line do not count. Never empty for a text that is not blank.
[[nodiscard]] std::vector<Goal> parseGoals(std::string_view text);

}  // namespace corvane::standin
