#include "CorvaneCore/authoring/rules/BranchRules.h"

#include "CorvaneCore/authoring/rules/StepRules.h"
#include "CorvaneCore/authoring/vocabulary/PreviousStepCondition.h"

namespace corvane {

namespace {

using Code = ValidationIssue::Code;

/// The command of a step when it starts or ends the app.
std::optional<BuiltInCommand> lifecycleCommand(const AgentInteraction& interaction) {
  const auto command = interaction.command();
  return command && isLifecycle(*command) ? command : std::nullopt;
}

void checkTopLevelCondition(const CheckedStep& step) {
  const auto& condition = step.interaction.previousStepCondition;
  if (!condition) return;
  if (*condition == rawValue(PreviousStepCondition::previousFailed)) {
    step.error(Code::invalidConditionalStructure, ".previousStepCondition",
               "previousStepCondition on a TOP-LEVEL step is ignored by the runtime — this step "
               "would run unconditionally, not on failure. To run steps when another step fails, "
               "nest them as that step's `children` with previousStepCondition 'previousFailed' "
               "(the recovery branch).");
  } else {
    step.warning(Code::invalidConditionalStructure, ".previousStepCondition",
                 "previousStepCondition has no effect on a top-level step (steps already run in "
                 "order). It selects branch membership for `children` only — drop it here.");
  }
}

void checkParent(const CheckedStep& step) {
  const auto command = lifecycleCommand(step.interaction);
  if (!step.interaction.hasChildren() || !command) return;
  step.error(Code::invalidConditionalStructure, ".children",
             std::string("builtIn/").append(rawValue(*command)) +
                 " cannot carry a conditional branch — lifecycle bookends are normalized into the "
                 "runtime scaffold. Anchor the branch on the functional step the interrupt "
                 "blocks.");
}

void checkChildType(const CheckedStep& child) {
  const auto type = child.interaction.knownType();
  if (type && mayBeBranchChild(*type)) return;
  child.error(Code::invalidConditionalStructure, ".type",
              "'" + child.interaction.type +
                  "' cannot be a branch child — branches allow primitive actions and runTest (" +
                  joinedRawValues<InteractionType>(", ", mayBeBranchChild) +
                  "). Compose userDefined/reuseSteps at the top level instead.");
}

void checkChildCondition(const CheckedStep& child) {
  const auto& condition = child.interaction.previousStepCondition;
  if (!condition) {
    child.error(Code::missingRequiredField, ".previousStepCondition",
                "Every child must declare previousStepCondition: 'previousFailed' = recovery "
                "branch (runs when the parent step fails, and the parent then soft-fails instead "
                "of failing the test), 'previousSucceeded' = runs only when the parent succeeds.",
                rawValue(PreviousStepCondition::previousFailed));
  } else if (!fromRawValue<PreviousStepCondition>(*condition)) {
    child.error(Code::invalidEnumValue, ".previousStepCondition",
                "Unknown previousStepCondition '" + *condition +
                    "'. Valid values: " + joinedRawValues<PreviousStepCondition>(", ") + ".");
  }
}

void checkChild(const CheckedStep& child) {
  if (child.interaction.hasChildren()) {
    child.error(Code::invalidConditionalStructure, ".children",
                "Conditional branches are ONE level deep — a child cannot have children of its own "
                "(Corvane strips deeper nesting on load). Flatten the branch into a sequence of "
                "children on the same parent.");
  }
  checkChildType(child);
  if (const auto command = lifecycleCommand(child.interaction)) {
    child.error(Code::invalidConditionalStructure, ".parameters.command",
                std::string("builtIn/").append(rawValue(*command)) +
                    " is not valid inside a branch — it would terminate/relaunch the app mid-test. "
                    "Branches handle in-app recovery (dismiss the dialog, retry the step).");
  }
  checkChildCondition(child);
}

}  // namespace

void checkBranch(const CheckedStep& step) {
  checkTopLevelCondition(step);
  checkParent(step);
  if (!step.interaction.children) return;
  const auto& children = *step.interaction.children;
  for (std::size_t c = 0; c < children.size(); ++c) {
    const CheckedStep child{children[c], step.path + ".children[" + std::to_string(c) + "]",
                            step.platform, step.result};
    checkChild(child);
    checkStep(child);
  }
}

}  // namespace corvane
