#include "CorvaneCore/authoring/schema/ConcreteDefinitions.h"

#include "CorvaneCore/authoring/schema/SchemaParts.h"
#include "CorvaneCore/authoring/vocabulary/DragMode.h"
#include "CorvaneCore/authoring/vocabulary/RegionOfInterest.h"
#include "CorvaneCore/authoring/vocabulary/ScrollDirection.h"
#include "CorvaneCore/authoring/vocabulary/ScrollSearchType.h"
#include "CorvaneCore/authoring/vocabulary/ScrollSpeed.h"

namespace corvane {

namespace {

using namespace SchemaParts;
using Definition = InteractionDefinition;
using Description = InteractionDefinition::Description;

JsonObject regionOfInterest() {
  return wordOf<RegionOfInterest>(
      "The part of the screen in which Corvane looks for the target. Err wide: 'all' is right most "
      "of the time.");
}

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

}  // namespace

InteractionDefinition tapDefinition() {
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

InteractionDefinition inputDefinition() {
  return Definition(InteractionType::input,
                    "The literal text to type, not wrapped in quotes. [[random(N)]] and "
                    "[[randomDigits(N)]] give unique values.",
                    Description::required);
}

InteractionDefinition scrollDefinition() {
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

InteractionDefinition dragDefinition() {
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

}  // namespace corvane
