#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/InteractionDefinition.h"
#include "CorvaneCore/authoring/TestValidator.h"
#include "CorvaneCore/authoring/Vocabularies.h"

// The step types that act on a control of the screen. They are authored by exploration; a composed
// test holds them inside branches only.
namespace corvane {

namespace {

using namespace SchemaParts;
using Definition = InteractionDefinition;
using Description = InteractionDefinition::Description;
using Code = ValidationIssue::Code;

JsonObject regionOfInterest() {
  return wordOf<RegionOfInterest>(
      "The part of the screen in which Corvane looks for the target. Err wide: 'all' is right most "
      "of the time.");
}

std::string regionHealing() {
  return "\n  parameters.regionOfInterest: one of " + joinedRawValues<RegionOfInterest>(", ") +
         ". Err wide: all is right most of the time.";
}

}  // namespace

InteractionDefinition StepParts::tapDefinition() {
  return Definition(InteractionType::tap,
                    "What to tap: a phrase that quotes the control's visible label, e.g. "
                    "\"Button labeled 'Log In'\". Quote the label, never a value that changes.",
                    Description::required)
      .parameters({{"tapCount",
                    with(ofType("integer", "How often to tap; 2 is a double tap."), "minimum", 1)},
                   {"regionOfInterest", regionOfInterest()},
                   {"until", ofType("string",
                                    "Optional yes/no condition phrased as a visual question; "
                                    "Corvane taps until the answer is yes.")}})
      .commonFlags();
}

std::string StepParts::tapHealing() {
  return "\n  description: a phrase that contains the visible UI text in quotes, e.g. "
         "\"Button labeled 'Allow'\". Quote the control's label, never its current value." +
         regionHealing();
}

InteractionDefinition StepParts::inputDefinition() {
  return Definition(InteractionType::input,
                    "The literal text to type, not wrapped in quotes. [[random(N)]] and "
                    "[[randomDigits(N)]] give unique values.",
                    Description::required);
}

void StepParts::checkInput(const CheckedStep& step) {
  if (!step.interaction.description.empty()) return;
  step.error(Code::emptyInputText, ".description",
             "input.description is the literal text to type and must be non-empty. Use "
             "[[random(N)]] / [[randomDigits(N)]] markers for unique values.");
}

std::string StepParts::inputHealing() {
  return "\n  description: the literal text to type, not wrapped in quotes. Typing replaces the "
         "field's content.";
}

InteractionDefinition StepParts::scrollDefinition() {
  return Definition(InteractionType::scroll, Definition::optionalLabel, Description::optional)
      .parameters(
          {{"direction", wordOf<ScrollDirection>("Which way to scroll through the contents.")},
           {"speed", wordOf<ScrollSpeed>("How fast to scroll.")},
           {"searchType",
            wordOf<ScrollSearchType>("How to look for the target while scrolling: 'itemScan' goes "
                                     "item by item, 'general' looks at the whole screen.")},
           {"regionOfInterest", regionOfInterest()},
           {"until", ofType("string",
                            "Optional yes/no condition phrased as a visual question; Corvane "
                            "scrolls until the answer is yes.")}})
      .commonFlags();
}

void StepParts::checkScroll(const CheckedStep& step) {
  const auto* direction = step.interaction.parameter<std::string>("direction");
  if (!direction || fromRawValue<ScrollDirection>(*direction)) return;
  step.error(Code::invalidEnumValue, ".parameters.direction",
             "Unknown scroll direction '" + *direction +
                 "'. Valid: " + joinedRawValues<ScrollDirection>(", "));
}

std::string StepParts::scrollHealing() {
  return "\n  description: an optional label.\n  parameters.direction: one of " +
         joinedRawValues<ScrollDirection>(", ") + "." + regionHealing();
}

namespace {

JsonObject dragEnd(std::string_view description) {
  const auto fraction = [](std::string_view text) {
    return with(with(ofType("number", text), "minimum", 0), "maximum", 1);
  };
  const JsonObject point{{"type", "object"},
                         {"properties", JsonObject{{"x", fraction("Normalized x in [0,1].")},
                                                   {"y", fraction("Normalized y in [0,1].")}}},
                         {"required", AnyCodable::Array{"x", "y"}},
                         {"additionalProperties", false}};
  return {{"anyOf", AnyCodable::Array{JsonObject{{"type", "string"}}, point}},
          {"description", description}};
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

InteractionDefinition StepParts::dragDefinition() {
  return Definition(InteractionType::drag, Definition::optionalLabel, Description::optional)
      .parameters(
          {{"mode", wordOf<DragMode>(
                        "'auto' = describe what/to/from in plain English (AI detects). 'hardcoded' "
                        "= supply explicit normalized {x,y} for both endpoints.")},
           {"what", ofType("string",
                           "REQUIRED. Description of the draggable element — the "
                           "handle/thumb/grabber the user grabs. Examples: \"the thumb of the "
                           "volume slider\", \"the grabber at the right end of the row 'Milk'\".")},
           {"from", dragEnd("Where the drag begins.")},
           {"to", dragEnd("Where the drag ends.")},
           {"regionOfInterest", regionOfInterest()}},
          {"mode"})
      .commonFlags();
}

void StepParts::checkDrag(const CheckedStep& step) {
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
