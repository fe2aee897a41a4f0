#include "CorvaneCore/authoring/AuthoringContract.h"

#include <algorithm>
#include <functional>
#include <string_view>

#include "CorvaneCore/authoring/InteractionDefinition.h"
#include "CorvaneCore/authoring/Vocabularies.h"

namespace corvane {

namespace {

constexpr std::string_view introduction = R"(# Corvane test-authoring contract

A test is an ordered list of interactions. The machine-readable schema is `create_test.inputSchema`, returned by `tools/list`. The rules below are what the schema cannot express.

)";

constexpr std::string_view bookends = R"(## 1. Bookends

Every test is wrapped in the same lifecycle steps:

1. builtIn/terminateApplication, always first, for a clean slate.
2. builtIn/openApplication with description exactly '{{APP_NAME}}', always second. Corvane fills in the real bundle name after building; never write a name yourself.
3. Your interactions.
4. builtIn/terminateApplication, always last, so that the device is left clean.

)";

using Words = Vocabulary<InteractionType>;

/// The types whose description holds `what`.
std::string describedBy(Words::Description what, std::string_view separator) {
  return listedTypes(
      separator, [what](InteractionType type) { return vocabularyRow(type).description == what; });
}

std::string description() {
  using Holds = Words::Description;
  return R"(## 2. `description` is the per-step runtime payload

The description is no comment: it is what the step works with when it runs.

- )" + describedBy(Holds::quotedText, " and ") +
         R"(: a phrase that contains the visible UI text in quotes. Single quotes or backticks read best: "Button labeled 'Log In'", "Do you see text `Welcome`?". A visualAssert asks a yes/no question and passes when the answer is yes.
- Tap anchors must be stable: quote the control's label, never its transient current value. "Row labeled 'Language'" still finds the row after somebody has changed its value; "Row showing 'English'" does not.
- )" + describedBy(Holds::typedText, " and ") +
         R"(: the literal text to type, not wrapped in quotes. '[[random(N)]]' / '[[randomDigits(N)]]' stand for N random characters / digits, for values that must be unique. Typing replaces a field's real content (auto-clear), while consecutive keyboard steps (input / hitBackspaceKey / clearText / hitReturnKey) continue the same edit at the cursor.
- builtIn/openApplication: exactly '{{APP_NAME}}'.
- builtIn/openUrl: the URL, or a `$paramName` placeholder.
- builtIn/hitBackspaceKey: a positive integer count as a string, e.g. "5".
- every other builtIn: empty.
- )" + describedBy(Holds::label, " / ") +
         R"(: an optional label that Corvane regenerates from the parameters.
- )" + describedBy(Holds::note, " / ") +
         R"(: an optional display note.

)";
}

constexpr std::string_view fieldNames =
    R"(## 3. Don't swap field names, don't send `title`

- delay uses `parameters.seconds`: a pause of exactly that length.
- waitToLoad uses `parameters.totalSeconds`: the longest time to wait until the screen has loaded.
- The per-step `title` (the chip header such as TAP, BUILT IN, KEYBOARD TYPE) is derived from `type`. Never send it.

)";

/// Whether steps of this type say in which part of the screen to look.
bool hasRegion(InteractionType type) {
  const JsonObject schema = definitionOf(type).schema();
  const auto* parameters =
      schema.findAs<JsonObject>("properties")->findAs<JsonObject>("parameters");
  const auto* keys = parameters->findAs<JsonObject>("properties");
  return keys->find("regionOfInterest") != nullptr;
}

std::string regions() {
  return "## 4. Picking `regionOfInterest` and `memoryEnabled` (" + listedTypes(" / ", hasRegion) +
         R"()

`parameters.regionOfInterest` is the part of the screen in which Corvane looks for the target: )" +
         joinedRawValues<RegionOfInterest>(", ") +
         R"(. The first word is the band, the number after it its height in percent of the screen (`content` is the middle three quarters); Leading50, Trailing50 and Center33 narrow the band to the leading half, the trailing half or the middle third.

ERR WIDE, NEVER NARROW:

- `all` is right most of the time.
- Narrow only when the same text occurs more than once on the screen and the whole target sits well inside the band. Within about 10% of an edge of the band, take the next larger region.
- Bottom bands are for elements pinned to the very bottom edge (a tab bar, a docked button), never for the contents of a sheet.
- Keep `memoryEnabled` on, except for elements that move between runs.
- Fix an imprecise tap with a wider region or with memory, not with a tighter crop.

)";
}

std::string composition() {
  return R"(## 5. Authoring vs composition (who writes which steps)

- Concrete steps ()" +
         listedTypes(" / ", isConcrete) +
         R"() are authored by exploration: explore_flow sees the device and grounds each step on the real screen.
- create_test composes: )" +
         joinedRawValues<InteractionType>(" / ", isReference) +
         R"( references to what exists, plus visualAssert probes, waits ()" +
         listedTypes(" / ", isWait) +
         R"() and builtIn glue. It refuses concrete steps at the top level of a test.
- Concrete primitives remain allowed inside a recovery branch's `children`, where they dismiss an interrupt.

)";
}

std::string branches() {
  return R"(## 6. Conditional branches, the state router, and resilience

A step's `children` are its conditional branch. Each child sets `previousStepCondition`:

- 'previousFailed' children are the recovery branch. They run when the parent step fails, and the parent then soft-fails instead of failing the test, provided the branch passes.
- 'previousSucceeded' children run only when the parent succeeds.
- A step that fails with no previousFailed children still fails the test.
- Branches are one level deep: a child has no `children` of its own. A child may be of any type but )" +
         joinedRawValues<InteractionType>(" and ", std::not_fn(takesPartInBranches)) +
         R"(, and no builtIn that terminates or opens the app; the bookends themselves cannot branch.
- `previousStepCondition` is meaningless at the top level, where the steps run in order anyway. Leave it out there.

State router. Launch is not a clean state: the app may come up signed in, signed out or in the middle of onboarding. Do not assume; probe with a visualAssert and recover with a runTest child:

```json
{"type": "visualAssert", "description": "Do you see the tab 'Home'?",
 "children": [{"type": "runTest", "referencedTestName": "Log in", "previousStepCondition": "previousFailed"}]}
```

OS interrupts. A permission dialog, a rating prompt or a first-run sheet is the app's real behavior. Absorb it with a recovery branch on the step that it blocks (a tap on "Button labeled 'Allow'"), and never by changing device state out of band: a test that passes only on a prepared device fails on every fresh one.

Resilience. `selfHealingMode` 'fullTest' lets Corvane adapt when the screen has changed. Set it on the router test, which meets whatever state the app is in; leave it off for the feature tests that the router composes, so that they stay strict.

)";
}

constexpr std::string_view closing = R"(---

To plan what to author, follow the planning recipe in the describe_project brief and the guidance of explore_flow.

On failure create_test returns structured ValidationIssue objects (severity, code, path, message, suggestion). Apply the suggestion at the given path and call create_test again; where there is no suggestion, the message says what to change. A call carries one test, so a path that begins with tests[0].interactions[2] means the third element of your `interactions`. There is no need to memorise the codes.)";

}  // namespace

std::string AuthoringContract::generalContract() {
  std::string contract;
  contract.append(introduction).append(bookends).append(description()).append(fieldNames);
  contract.append(regions()).append(composition()).append(branches()).append(closing);
  return contract;
}

std::string_view StepParts::noExtraGuidance() {
  return AuthoringContract::noExtraGuidance;
}

std::string_view AuthoringContract::guidance(InteractionType type) {
  return vocabularyRow(type).guidance();
}

const std::string& AuthoringContract::fullMarkdown() {
  // Making it costs more than all else that a call of list_interaction_types does.
  static const std::string markdown = [] {
    std::string text = generalContract() + "\n\n# Per-interaction guidance\n\n";
    std::string_view separator;
    for (const auto& row : Vocabulary<InteractionType>::rows) {
      text.append(separator).append("## ").append(row.rawValue).append("\n\n");
      text.append(guidance(row.value));
      separator = "\n\n";
    }
    return text;
  }();
  return markdown;
}

std::string HealingSubsetSpec::make() {
  static_assert(std::ranges::count_if(Vocabulary<InteractionType>::rows,
                                      [](const auto& row) { return mayHeal(row.value); }) == 4,
                "the text says how many types there are");
  std::string text =
      "CORVANE HEALING TOOLBOX\n"
      "━━━━━━━━━━━━━━━━━━━━━━━\n"
      "You MUST ONLY emit healingSteps using these four types.\n"
      "Field names and enum values match Corvane MCP create_test (same RegionOfInterest).";
  for (const auto& row : Vocabulary<InteractionType>::rows) {
    if (!mayHeal(row.value)) continue;
    text.append("\n\n▸ type: \"").append(row.rawValue).append("\"").append(row.healing());
  }
  return text;
}

}  // namespace corvane
