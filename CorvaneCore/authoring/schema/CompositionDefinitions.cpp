#include "CorvaneCore/authoring/schema/CompositionDefinitions.h"

#include "CorvaneCore/authoring/schema/SchemaParts.h"
#include "CorvaneCore/authoring/vocabulary/BuiltInCommand.h"

namespace corvane {

namespace {

using namespace SchemaParts;
using Definition = InteractionDefinition;
using Description = InteractionDefinition::Description;

/// Adds the two ways to name an existing test.
Definition withReference(Definition definition) {
  return std::move(definition)
      .property("referencedTestId",
                ofType("string",
                       "UUID of the existing test, from describe_project. This or "
                       "referencedTestName is required."))
      .property("referencedTestName",
                ofType("string",
                       "Exact name of the existing test, from describe_project. This or "
                       "referencedTestId is required."));
}

}  // namespace

InteractionDefinition visualAssertDefinition() {
  return Definition(InteractionType::visualAssert,
                    "A yes/no question about the current screen that quotes the visible text, e.g. "
                    "\"Do you see text `Welcome`?\". The step passes when the answer is yes.",
                    Description::required)
      .commonFlags();
}

InteractionDefinition builtInDefinition() {
  const auto isUsable = [](BuiltInCommand command) { return command != BuiltInCommand::none; };
  return Definition(
             InteractionType::builtIn,
             "terminateApplication kills the app. openApplication launches it (description must be "
             "'{{APP_NAME}}'). openUrl opens the URL that the description holds (a `$paramName` "
             "placeholder is fine). hitBackspaceKey deletes as many characters as the description "
             "says, a "
             "positive integer as a string, e.g. \"5\". The description of every other command is "
             "the "
             "empty string: goHome shows the home screen, goBack goes back (Android only), "
             "hitReturnKey "
             "presses Return, clearText empties the focused field, tapToDismiss taps beside a "
             "menu, "
             "popover or keyboard to close it.",
             Description::required)
      .parameters({{"command", wordOf<BuiltInCommand>("What the step does.", isUsable)}},
                  {"command"});
}

InteractionDefinition delayDefinition() {
  return Definition(InteractionType::delay, Definition::optionalLabel, Description::optional)
      .parameters(
          {{"seconds",
            with(ofType("number",
                        "Number of seconds to pause unconditionally. Field is 'seconds', NOT "
                        "'totalSeconds' (which belongs to waitToLoad)."),
                 "minimum", 0)}},
          {"seconds"});
}

InteractionDefinition waitToLoadDefinition() {
  constexpr int longestWait = 600;
  return Definition(InteractionType::waitToLoad, Definition::optionalLabel, Description::optional)
      .parameters(
          {{"totalSeconds",
            with(
                with(ofType("number",
                            "Max seconds to wait (cap 600). Field is 'totalSeconds', NOT 'seconds' "
                            "(which belongs to delay). Choose it tight, e.g. 5 to 20: an over-long "
                            "wait freezes the run's progress feedback for as long as it lasts."),
                     "minimum", 0),
                "maximum", longestWait)},
           {"until",
            ofType("string",
                   "Optional yes/no condition phrased as a visual question. Example: \"Is the "
                   "loading spinner gone?\". When omitted, Corvane waits for the generic "
                   "splash/skeleton screen to disappear.")}},
          {"totalSeconds"});
}

InteractionDefinition runTestDefinition() {
  return withReference(
             Definition(InteractionType::runTest,
                        "Optional display string. Corvane regenerates it from the referenced test.",
                        Description::optional))
      .property("arguments",
                with(ofType("object",
                            "Values for the parameters that the referenced test declares. Keys are "
                            "parameter names without the $."),
                     "additionalProperties", JsonObject{{"type", "string"}}));
}

InteractionDefinition userDefinedDefinition() {
  return Definition(InteractionType::userDefined,
                    "Optional display note. Corvane shows the UDI's own name on the tile.",
                    Description::optional)
      .property("udiName", ofType("string",
                                  "REQUIRED. Name of the reusable building block (UDI), exactly as "
                                  "describe_project lists it."));
}

InteractionDefinition reuseStepsDefinition() {
  return withReference(
             Definition(InteractionType::reuseSteps,
                        "Optional display note, e.g. \"Reach the Input tab\". Corvane regenerates "
                        "labels from the cloned steps.",
                        Description::optional))
      .property("fromStep",
                with(ofType("integer",
                            "0-based index of the FIRST step to clone, matching the source test's "
                            "step order in describe_project."),
                     "minimum", 0))
      .property("toStep", with(ofType("integer",
                                      "0-based index of the LAST step to clone (inclusive). Omit "
                                      "to clone the single step at fromStep."),
                               "minimum", 0));
}

}  // namespace corvane
