#include "CorvaneCore/authoring/rules/ParameterRules.h"

#include "CorvaneCore/authoring/vocabulary/DragMode.h"
#include "CorvaneCore/authoring/vocabulary/ScrollDirection.h"

namespace corvane {

namespace {

using Code = ValidationIssue::Code;

std::optional<double> numberAt(const JsonObject& object, std::string_view key) {
  if (const auto* number = object.findAs<double>(key)) return *number;
  if (const auto* integer = object.findAs<std::int64_t>(key)) return static_cast<double>(*integer);
  return std::nullopt;
}

bool hasKey(const CheckedStep& step, std::string_view key) {
  const auto& parameters = step.interaction.parameters;
  return parameters && parameters->find(key);
}

bool hasNumber(const CheckedStep& step, std::string_view key) {
  const auto& parameters = step.interaction.parameters;
  return parameters && numberAt(*parameters, key);
}

/// Whether the parameter is a point {x, y} of the screen in normalised coordinates.
bool hasPoint(const CheckedStep& step, std::string_view key) {
  const auto* point = step.interaction.parameter<JsonObject>(key);
  const auto isFraction = [point](std::string_view axis) {
    const auto value = numberAt(*point, axis);
    return value && *value >= 0 && *value <= 1;
  };
  return point && isFraction("x") && isFraction("y");
}

void checkDescribedDrag(const CheckedStep& step) {
  const AgentInteraction& interaction = step.interaction;
  const auto* what = interaction.parameter<std::string>("what");
  const bool hasWhat = what && !what->empty();
  const bool hasTo =
      interaction.parameter<std::string>("to") || interaction.parameter<JsonObject>("to");
  if (hasWhat || hasTo) return;
  step.error(Code::missingRequiredField, ".parameters.what",
             "drag(auto) requires at least 'what' (what to drag) and/or 'to' (where to drag it).");
}

void checkHardcodedDrag(const CheckedStep& step) {
  if (!hasPoint(step, "from")) {
    step.error(Code::missingRequiredField, ".parameters.from",
               "drag(hardcoded) requires parameters.from = {x, y} with values in [0,1].");
  }
  if (!hasPoint(step, "to")) {
    step.error(Code::missingRequiredField, ".parameters.to",
               "drag(hardcoded) requires parameters.to = {x, y} with values in [0,1].");
  }
}

}  // namespace

void checkDelay(const CheckedStep& step) {
  if (hasKey(step, "totalSeconds")) {
    step.error(Code::unknownParameter, ".parameters.totalSeconds",
               "delay does not accept 'totalSeconds' (that belongs to waitToLoad). Use 'seconds'.");
  }
  if (!hasNumber(step, "seconds")) {
    step.error(Code::missingRequiredField, ".parameters.seconds",
               "delay requires parameters.seconds (a non-negative number, e.g. 1.5).");
  }
}

void checkWaitToLoad(const CheckedStep& step) {
  if (hasKey(step, "seconds")) {
    step.error(Code::unknownParameter, ".parameters.seconds",
               "waitToLoad does not accept 'seconds' (that belongs to delay). Use "
               "'totalSeconds'.");
  }
  if (!hasNumber(step, "totalSeconds")) {
    step.error(Code::missingRequiredField, ".parameters.totalSeconds",
               "waitToLoad requires parameters.totalSeconds (max seconds to wait, e.g. 5).");
  }
}

void checkScroll(const CheckedStep& step) {
  const auto* direction = step.interaction.parameter<std::string>("direction");
  if (!direction || fromRawValue<ScrollDirection>(*direction)) return;
  step.error(Code::invalidEnumValue, ".parameters.direction",
             "Unknown scroll direction '" + *direction +
                 "'. Valid: " + joinedRawValues<ScrollDirection>(", "));
}

void checkDrag(const CheckedStep& step) {
  const auto* raw = step.interaction.parameter<std::string>("mode");
  const auto mode = raw ? fromRawValue<DragMode>(*raw) : std::nullopt;
  if (!mode) {
    step.error(Code::missingRequiredField, ".parameters.mode",
               "drag requires parameters.mode = 'auto' (AI-driven) or 'hardcoded' (explicit "
               "coords).");
    return;
  }
  switch (*mode) {
    case DragMode::automatic:
      return checkDescribedDrag(step);
    case DragMode::hardcoded:
      return checkHardcodedDrag(step);
  }
}

}  // namespace corvane
