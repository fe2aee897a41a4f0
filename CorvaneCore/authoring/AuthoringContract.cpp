#include "CorvaneCore/authoring/AuthoringContract.h"

#include "CorvaneCore/authoring/vocabulary/RegionOfInterest.h"

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

constexpr std::string_view description = R"(## 2. `description` is the per-step runtime payload

The description is no comment: it is what the step works with when it runs.

- tap and visualAssert: a phrase that contains the visible UI text in quotes. Single quotes or backticks read best: "Button labeled 'Log In'", "Do you see text `Welcome`?". A visualAssert asks a yes/no question and passes when the answer is yes.
- Tap anchors must be stable: quote the control's label, never its transient current value. "Row labeled 'Language'" still finds the row after somebody has changed its value; "Row showing 'English'" does not.
- input: the literal text to type, not wrapped in quotes. '[[random(N)]]' / '[[randomDigits(N)]]' stand for N random characters / digits, for values that must be unique. Typing replaces a field's real content (auto-clear), while consecutive keyboard steps (input / hitBackspaceKey / clearText / hitReturnKey) continue the same edit at the cursor.
- builtIn/openApplication: exactly '{{APP_NAME}}'.
- builtIn/openUrl: the URL, or a `$paramName` placeholder.
- builtIn/hitBackspaceKey: a positive integer count as a string, e.g. "5".
- every other builtIn: empty.
- scroll / drag / delay / waitToLoad / runTest: an optional label that Corvane regenerates from the parameters.
- reuseSteps / userDefined: an optional display note.

)";

constexpr std::string_view fieldNames =
    R"(## 3. Don't swap field names, don't send `title`

- delay uses `parameters.seconds`: a pause of exactly that length.
- waitToLoad uses `parameters.totalSeconds`: the longest time to wait until the screen has loaded.
- The per-step `title` (the chip header such as TAP, BUILT IN, KEYBOARD TYPE) is derived from `type`. Never send it.

)";

std::string regions() {
  return R"(## 4. Picking `regionOfInterest` and `memoryEnabled` (tap / scroll / drag)

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

constexpr std::string_view composition =
    R"(## 5. Authoring vs composition (who writes which steps)

- Concrete steps (tap / input / scroll / drag) are authored by exploration: explore_flow sees the device and grounds each step on the real screen.
- create_test composes: runTest / userDefined / reuseSteps references to what exists, plus visualAssert probes, waits (delay / waitToLoad) and builtIn glue. It refuses concrete steps at the top level of a test.
- Concrete primitives remain allowed inside a recovery branch's `children`, where they dismiss an interrupt.

)";

constexpr std::string_view branches =
    R"(## 6. Conditional branches, the state router, and resilience

A step's `children` are its conditional branch. Each child sets `previousStepCondition`:

- 'previousFailed' children are the recovery branch. They run when the parent step fails, and the parent then soft-fails instead of failing the test, provided the branch passes.
- 'previousSucceeded' children run only when the parent succeeds.
- A step that fails with no previousFailed children still fails the test.
- Branches are one level deep: a child has no `children` of its own. A child may be of any type but userDefined and reuseSteps, and no builtIn that terminates or opens the app; the bookends themselves cannot branch.
- `previousStepCondition` is meaningless at the top level, where the steps run in order anyway. Leave it out there.

State router. Launch is not a clean state: the app may come up signed in, signed out or in the middle of onboarding. Do not assume; probe with a visualAssert and recover with a runTest child:

```json
{"type": "visualAssert", "description": "Do you see the tab 'Home'?",
 "children": [{"type": "runTest", "referencedTestName": "Log in", "previousStepCondition": "previousFailed"}]}
```

OS interrupts. A permission dialog, a rating prompt or a first-run sheet is the app's real behavior. Absorb it with a recovery branch on the step that it blocks (a tap on "Button labeled 'Allow'"), and never by changing device state out of band: a test that passes only on a prepared device fails on every fresh one.

Resilience. `selfHealingMode` 'fullTest' lets Corvane adapt when the screen has changed. Set it on the router test, which meets whatever state the app is in; leave it off for the feature tests that the router composes, so that they stay strict.

)";

constexpr std::string_view closing = R"(---

To plan what to author, follow the planning recipe in the describe_project brief and the guidance of explore_flow.

On failure create_test returns structured ValidationIssue objects (severity, code, path, message, suggestion). Apply the suggestion at the given path and call create_test again; where there is no suggestion, the message says what to change. A call carries one test, so a path that begins with tests[0].interactions[2] means the third element of your `interactions`. There is no need to memorise the codes.)";

constexpr std::string_view runTestHint =
    R"(Invokes another existing test inline, at this point of the test, and records it as a run of its own. Identify it by `referencedTestId` (its UUID) or by `referencedTestName` (its exact name); describe_project lists both. `arguments` hands it values for the parameters that it declares, by parameter name without the $. Use it to chain proven flows and, as a previousFailed child of a visualAssert probe, as the recovery of a state router.)";

constexpr std::string_view userDefinedHint =
    R"(Embeds a reusable building block (UDI) of the user's library, identified by `udiName`, exactly as describe_project lists it. Its steps run inline, so several building blocks compose into one test and one run. The library belongs to the user, not to a project: before you embed a building block, check in describe_project that it was made for this app. Top level only.)";

constexpr std::string_view reuseStepsHint =
    R"(Clones a contiguous range of steps of an existing test, identified by `referencedTestId` (its UUID) or by `referencedTestName` (its exact name). `fromStep` and `toStep` are 0-based and inclusive and count the steps as describe_project lists them; omit `toStep` to clone the single step at `fromStep`. The clones keep their prompts verbatim and each step's learned position memory. Use it to reach a screen that a proven test already reaches. Top level only.)";

}  // namespace

std::string AuthoringContract::generalContract() {
  std::string contract;
  contract.append(introduction).append(bookends).append(description).append(fieldNames);
  contract.append(regions()).append(composition).append(branches).append(closing);
  return contract;
}

std::string_view AuthoringContract::guidance(InteractionType type) {
  switch (type) {
    case InteractionType::runTest:
      return runTestHint;
    case InteractionType::userDefined:
      return userDefinedHint;
    case InteractionType::reuseSteps:
      return reuseStepsHint;
    default:
      return noExtraGuidance;
  }
}

std::string AuthoringContract::fullMarkdown() {
  std::string markdown = generalContract() + "\n\n# Per-interaction guidance\n\n";
  std::string_view separator;
  for (const auto& row : Vocabulary<InteractionType>::rows) {
    markdown.append(separator).append("## ").append(row.rawValue).append("\n\n");
    markdown.append(guidance(row.value));
    separator = "\n\n";
  }
  return markdown;
}

}  // namespace corvane
