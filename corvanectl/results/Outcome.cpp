#include "corvanectl/results/Outcome.h"

#include <algorithm>

#include "corvanectl/results/RequestResult.h"

namespace corvane::ctl {

namespace {

/// What a status of a test or a step says by itself.
Outcome outcomeOfWord(std::string_view status) {
  if (status == "passed") return Outcome::passed;
  if (status == "healed") return Outcome::healed;
  if (status == "failed") return Outcome::failed;
  if (status == "skipped") return Outcome::skipped;
  return Outcome::other;
}

}  // namespace

Outcome outcomeOf(const AgentRunResult::Test& test) {
  const Outcome outcome = outcomeOfWord(test.status);
  if (outcome != Outcome::passed) return outcome;
  return countSteps(test, Outcome::healed) > 0 ? Outcome::healed : Outcome::passed;
}

Outcome outcomeOf(const AgentRunResult::Step& step) {
  const bool healed = isHealed(step) && step.status != "failed";
  return healed ? Outcome::healed : outcomeOfWord(step.status);
}

Outcome outcomeOf(std::string_view status) {
  switch (exitStatusOf(status)) {
    case ExitStatus::success:
      return Outcome::passed;
    case ExitStatus::failure:
      return Outcome::failed;
    default:
      return Outcome::other;
  }
}

std::string_view statusWord(const AgentRunResult::Step& step) {
  return outcomeOf(step) == Outcome::healed ? "healed" : std::string_view(step.status);
}

bool isNotable(const AgentRunResult::Step& step) {
  const Outcome outcome = outcomeOf(step);
  return step.failureReason || (outcome != Outcome::passed && outcome != Outcome::skipped);
}

std::int64_t countSteps(const AgentRunResult::Test& test, Outcome outcome) {
  return std::ranges::count_if(test.steps,
                               [outcome](const auto& step) { return outcomeOf(step) == outcome; });
}

}  // namespace corvane::ctl
