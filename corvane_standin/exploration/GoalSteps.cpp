#include "corvane_standin/exploration/GoalSteps.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "CorvaneCore/authoring/InteractionType.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/runs/StepText.h"

namespace corvane::standin {

namespace {

using Step = AgentContext::StepSummary;

struct Verb {
  std::string_view word;
  InteractionType type;
};

constexpr std::array verbs{
    Verb{"assert", InteractionType::visualAssert},  Verb{"check", InteractionType::visualAssert},
    Verb{"confirm", InteractionType::visualAssert}, Verb{"expect", InteractionType::visualAssert},
    Verb{"see", InteractionType::visualAssert},     Verb{"verify", InteractionType::visualAssert},
    Verb{"enter", InteractionType::input},          Verb{"fill", InteractionType::input},
    Verb{"type", InteractionType::input},           Verb{"scroll", InteractionType::scroll},
    Verb{"swipe", InteractionType::scroll},         Verb{"drag", InteractionType::drag},
    Verb{"wait", InteractionType::waitToLoad},
};

/// What is typed in: the quoted text of the clause or its placeholder, else all after the verb.
std::string typedText(std::string_view clause, std::string_view afterVerb) {
  const auto open = clause.find('"');
  if (open != std::string_view::npos) {
    const auto close = clause.find('"', open + 1);
    if (close != std::string_view::npos) {
      return std::string(clause.substr(open + 1, close - open - 1));
    }
  }
  const auto dollar = clause.find('$');
  if (dollar != std::string_view::npos) {
    return std::string(clause.substr(dollar, clause.find(' ', dollar) - dollar));
  }
  return std::string(afterVerb);
}

Step makeStep(InteractionType type, std::string description) {
  Step step;
  step.type = rawValue(type);
  step.description =
      type == InteractionType::input ? std::move(description) : capitalized(std::move(description));
  return step;
}

Step stepFor(std::string_view clause) {
  const auto space = std::min(clause.find(' '), clause.size());
  const auto word = asciiLowercase(clause.substr(0, space));
  auto rest = trimWhitespace(clause.substr(space));
  const auto verb = std::find_if(verbs.begin(), verbs.end(),
                                 [&word](const Verb& each) { return each.word == word; });
  const auto type = verb == verbs.end() ? InteractionType::tap : verb->type;
  switch (type) {
    case InteractionType::input:
      return makeStep(type, typedText(clause, rest));
    case InteractionType::visualAssert:
      if (rest.starts_with("that ")) rest.remove_prefix(5);
      return makeStep(type, std::string(rest.empty() ? clause : rest));
    default:
      return makeStep(type, std::string(clause));
  }
}

}  // namespace

std::vector<Step> stepsToward(const Goal& goal) {
  std::vector<Step> steps;
  for (const auto& clause : goal.clauses) steps.push_back(stepFor(trimWhitespace(clause)));
  const auto look = rawValue(InteractionType::visualAssert);
  if (steps.empty() || steps.back().type != look) {
    steps.push_back(makeStep(InteractionType::visualAssert,
                             "The screen shows that this is reached: " + goal.name));
  }
  return steps;
}

}  // namespace corvane::standin
