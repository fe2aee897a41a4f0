#include "CorvaneCore/authoring/HealingSubsetSpec.h"

#include <string_view>

#include "CorvaneCore/authoring/vocabulary/BuiltInCommand.h"
#include "CorvaneCore/authoring/vocabulary/InteractionType.h"
#include "CorvaneCore/authoring/vocabulary/RegionOfInterest.h"
#include "CorvaneCore/authoring/vocabulary/ScrollDirection.h"

namespace corvane {

namespace {

std::string block(InteractionType type, std::string_view body) {
  return std::string("\n\n▸ type: \"").append(rawValue(type)).append("\"").append(body);
}

std::string regionLine() {
  return "\n  parameters.regionOfInterest: one of " + joinedRawValues<RegionOfInterest>(", ") +
         ". Err wide: all is right most of the time.";
}

/// Healing happens in the middle of a test, where the app must not be ended or started.
bool mayHeal(BuiltInCommand command) {
  return command != BuiltInCommand::none && !isLifecycle(command);
}

}  // namespace

std::string HealingSubsetSpec::make() {
  std::string text =
      "CORVANE HEALING TOOLBOX\n"
      "━━━━━━━━━━━━━━━━━━━━━━━\n"
      "You MUST ONLY emit healingSteps using these four types.\n"
      "Field names and enum values match Corvane MCP create_test (same RegionOfInterest).";
  text += block(InteractionType::tap,
                "\n  description: a phrase that contains the visible UI text in quotes, e.g. "
                "\"Button labeled 'Allow'\". Quote the control's label, never its current value." +
                    regionLine());
  text += block(InteractionType::input,
                "\n  description: the literal text to type, not wrapped in quotes. Typing replaces "
                "the field's content.");
  text += block(InteractionType::scroll,
                "\n  description: an optional label.\n  parameters.direction: one of " +
                    joinedRawValues<ScrollDirection>(", ") + "." + regionLine());
  text += block(InteractionType::builtIn,
                "\n  parameters.command: one of " + joinedRawValues<BuiltInCommand>(", ", mayHeal) +
                    ". goBack is Android-only.\n  description: openUrl: the URL. hitBackspaceKey: "
                    "a positive integer count as a string, e.g. \"5\". Every other command: "
                    "empty.");
  return text;
}

}  // namespace corvane
