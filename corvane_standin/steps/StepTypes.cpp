#include <algorithm>
#include <array>

#include "CorvaneCore/json/AgentWire.h"
#include "corvane_standin/steps/Steps.h"

namespace corvane::standin {

namespace {

using GoalText = StepType::GoalText;
using Reference = StepType::Reference;
using Type = InteractionType;

std::string description(const AgentInteraction& step, const std::string&) {
  return step.description;
}

std::string command(const AgentInteraction& step, const std::string&) {
  const auto command = step.command();
  const std::string text(command ? title(*command) : "Built In");
  return step.description.empty() ? text : text + " " + step.description;
}

std::string seconds(const AgentInteraction& step, const std::string&) {
  if (!step.description.empty()) return step.description;
  const auto* seconds = step.parameters ? step.parameters->find("seconds") : nullptr;
  return "Wait " + (seconds ? AgentWire::encode(*seconds) : "1") + " seconds";
}

std::string runOfTest(const AgentInteraction& step, const std::string& testName) {
  return step.description.empty() ? "Run the test \"" + testName + "\"" : step.description;
}

std::string buildingBlock(const AgentInteraction& step, const std::string&) {
  return step.description.empty() ? step.udiName.value_or("") : step.description;
}

/// The one place in the stand-in to say what is special about the steps of a type.
constexpr std::array stepTypes{
    StepType{Type::tap, ScreenAct::tap, Reference::none, "", GoalText::clause, description},
    StepType{Type::input, ScreenAct::type, Reference::none, "enter fill type", GoalText::typedText,
             description},
    StepType{Type::visualAssert, ScreenAct::look, Reference::none,
             "assert check confirm expect see verify", GoalText::withoutVerb, description},
    StepType{Type::scroll, ScreenAct::scroll, Reference::none, "scroll swipe", GoalText::clause,
             description},
    StepType{Type::builtIn, ScreenAct::command, Reference::none, "", GoalText::clause, command},
    StepType{Type::delay, ScreenAct::wait, Reference::none, "", GoalText::clause, seconds},
    StepType{Type::waitToLoad, ScreenAct::look, Reference::none, "wait", GoalText::clause,
             description},
    StepType{Type::drag, ScreenAct::drag, Reference::none, "drag", GoalText::clause, description},
    StepType{Type::runTest, ScreenAct::otherSteps, Reference::test, "", GoalText::clause,
             runOfTest},
    StepType{Type::userDefined, ScreenAct::fillForm, Reference::buildingBlock, "", GoalText::clause,
             buildingBlock},
    StepType{Type::reuseSteps, ScreenAct::otherSteps, Reference::stepsOfTest, "", GoalText::clause,
             description},
};

static_assert(std::ranges::equal(stepTypes, Vocabulary<Type>::rows, {}, &StepType::type,
                                 [](const auto& row) { return row.value; }),
              "every interaction type has its row, in the order of the vocabulary");

}  // namespace

const StepType& stepType(InteractionType type) {
  return *std::ranges::find(stepTypes, type, &StepType::type);
}

const StepType& stepTypeOfVerb(std::string_view verb) {
  const auto* const found = std::ranges::find_if(
      stepTypes, [verb](const StepType& each) { return isOneOf(each.goalVerbs, verb); });
  return found == stepTypes.end() ? stepType(Type::tap) : *found;
}

std::string stepTitle(const std::string& interactionType) {
  const auto known = fromRawValue<InteractionType>(interactionType);
  return known ? std::string(chipTitle(*known)) : interactionType;
}

}  // namespace corvane::standin
