#include <array>
#include <charconv>

#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/tools/ToolArguments.h"
#include "corvane_mcp/tools/Tools.h"

namespace corvane {

namespace {

constexpr std::string_view name = "explore_flow";

constexpr std::string_view description =
    R"(Have CORVANE explore the live app toward natural-language goals and AUTHOR deterministic tests from what it discovers. This is how ALL concrete steps get authored: Corvane has eyes on the device and grounds every tap on the real screen — you don't. create_test only COMPOSES existing pieces; it cannot author taps, inputs or scrolls.

HAND A STRUCTURED GOAL MAP — MULTIPLE GOALS IN ONE CALL. You supply the structure (which flows, where the state forks, where to reuse); Corvane's planner supplies the steps. `goal` is a terse, labelled list of bounded goals, not a tap script. The canonical example, a startup suite:
  1. Ensure signed in: log in if a login screen shows, else pass through (reuse an existing login test or UDI). Assert the home screen.
  2. Tabs: visit each tab and assert that it loaded.
  3. Chat: open the in-app chat from its button and assert that it opens.
Corvane authors ONE TEST PER GOAL in one session and reuses earlier goals via runTest. Exact labels you know from source may be named as anchors. Do NOT ask for a separate login or launch probe test.

COST WARNING: every explored step costs roughly 10-20 credits. Budget maxCreditSpend at about expected steps x 15 (a 5-step flow: about 75-100; a 10-step flow: about 150-250). ALWAYS set it — a wandering session aborts gracefully and keeps partial work.

PROJECT BOOTSTRAP (first call to a NEW project): pass the build identity (iOS: iosProjectPath + bundleIdentifier; Android: androidProjectPath + applicationId) and explore_flow creates the project, builds, installs and explores in this one call. For an existing project omit the identity. Corvane builds first when the project's "Build before scheduled runs" setting is on; bootstrap turns it on.

What happens:
  1. The request is dispatched, Corvane.app is launched if it is not already running, and this tool returns IMMEDIATELY with a requestId.
  2. Poll get_result with waitSeconds 120: status "authoring" carries live activity, then terminal "authored" carries authoredTests[], one {testId, testName, stepCount} per goal.
  3. Inspect the authored tests with describe_project, then run them with run_test.

Terminal outcomes:
  • "authored" — success.
  • "warning" — partial: the tests authored so far are kept.
  • "blocked" — budgetExceeded, or missing identity or credits; see blocked.code.
  • "cancelled" — by cancel_run.
Sessions queue FIFO with runs and other explorations.

Partial outcomes: read the kept partial test via describe_project FIRST. Finishing it with create_test (reuseSteps plus the few missing steps) is cheaper than re-exploring. To continue into uncharted UI, re-issue explore_flow with resumeFromTestId set to the partial.)";

/// In characters. Shorter goals say too little to explore toward.
constexpr std::size_t shortestGoal = 10;

constexpr double leastCreditSpend = 1;

struct Arguments {
  std::optional<std::string> projectName;
  std::optional<std::string> goal;
  std::optional<std::string> testName;
  std::optional<std::string> targetPlatform;
  std::optional<double> maxCreditSpend;
  std::optional<std::string> resumeFromTestId;
  std::optional<std::string> resumeFromTestName;
  std::optional<std::string> iosProjectPath;
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> androidProjectPath;
  std::optional<std::string> applicationId;

  static auto arguments() {
    using A = Arguments;
    return std::tuple(
        argument("projectName", &A::projectName,
                 "Exact existing Corvane project name (see describe_project). Exploration does not "
                 "create projects — create_test does.")
            .required(),
        argument("goal", &A::goal,
                 "A structured map of ONE OR MORE bounded goals, one per line or labelled — terse, "
                 "not a tap-by-tap script. Each goal ends in a state to assert. Corvane authors "
                 "one test per goal and chains earlier goals via runTest. Split a sprawling "
                 "auth+navigation+feature recipe into several goals instead of writing it as one.")
            .required(),
        argument("testName", &A::testName,
                 "Optional name for the authored test. Omit to use the name Corvane derives from "
                 "the goal."),
        argument("targetPlatform", &A::targetPlatform,
                 "Optional. Omit to use the project's currently selected platform.")
            .oneOf<AgentTargetPlatform>(),
        argument("maxCreditSpend", &A::maxCreditSpend,
                 "STRONGLY RECOMMENDED. Abort the session (keeping partial work) once credit spend "
                 "exceeds this. Expect ~10-20 credits per explored step (budget ~ steps x 15) — "
                 "but when the user asked for an OUTCOME, budget generously (2-3x) or omit: "
                 "finishing beats guarding credits.")
            .with("minimum", 1),
        argument("resumeFromTestId", &A::resumeFromTestId,
                 "Run this test (its UUID from describe_project) as a PROVEN PREFIX before "
                 "exploring: Corvane seeds runTest of it as the first step, runs it to reach its "
                 "end state and explores only the new tail. Use this OR resumeFromTestName."),
        argument("resumeFromTestName", &A::resumeFromTestName,
                 "Display name of the prefix test to run before exploring (see resumeFromTestId). "
                 "Use this OR resumeFromTestId; id wins if both are set."),
        argument("iosProjectPath", &A::iosProjectPath,
                 "BOOTSTRAP a NEW iOS project in this one call: absolute path to the folder that "
                 "holds the Xcode project. Pass with bundleIdentifier when projectName doesn't "
                 "exist yet; omit for an existing project."),
        argument("bundleIdentifier", &A::bundleIdentifier,
                 "iOS bundle id (reverse-DNS) for bootstrapping a new project. Required with "
                 "iosProjectPath."),
        argument("androidProjectPath", &A::androidProjectPath,
                 "BOOTSTRAP a NEW Android project: absolute path to the Android project root. Pass "
                 "with applicationId when projectName doesn't exist yet."),
        argument("applicationId", &A::applicationId,
                 "Android applicationId (reverse-DNS) for bootstrapping a new project. Required "
                 "with androidProjectPath."));
  }
};

/// Why the arguments cannot be used, if they cannot.
std::optional<ToolsCallResult> refusal(const Arguments& arguments) {
  if (arguments.projectName.value_or("").empty()) {
    return invalidArguments(
        "'projectName' is required and must be an EXISTING Corvane project (exploration does not "
        "create projects — use create_test first).");
  }
  if (countCharacters(trimWhitespace(arguments.goal.value_or(""))) < shortestGoal) {
    return invalidArguments(
        "'goal' is required — a specific natural-language description of the flow to discover, "
        "including the end state to assert.");
  }
  if (arguments.maxCreditSpend && *arguments.maxCreditSpend < leastCreditSpend) {
    std::string sent = toJson(*arguments.maxCreditSpend);
    if (sent.find_first_of(".e") == std::string::npos) sent += ".0";
    return invalidArguments(
        "maxCreditSpend must be at least 1 (you sent " + sent +
        "). Expect ~10-20 credits per explored step (budget ~ steps x 15); omit the field only if "
        "you accept uncapped spend.");
  }
  return std::nullopt;
}

std::optional<std::string> unlessEmpty(std::optional<std::string> text) {
  return text && !text->empty() ? std::move(text) : std::nullopt;
}

std::string describeBudget(const std::optional<double>& credits) {
  if (!credits) return "UNCAPPED — consider setting maxCreditSpend";
  std::array<char, 400> digits;
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), *credits,
                                    std::chars_format::fixed, 0);
  return std::string(digits.data(), result.ptr) + " credits";
}

ToolsCallResult call(Arguments arguments, const ToolServices& services) {
  if (auto refused = refusal(arguments)) return std::move(*refused);

  auto request = Dispatch::newRequest<AgentExploreRequest>(services);
  request.projectName = std::move(*arguments.projectName);
  request.goal = std::move(*arguments.goal);
  request.testName = std::move(arguments.testName);
  request.targetPlatform = std::move(arguments.targetPlatform);
  request.maxCreditSpend = arguments.maxCreditSpend;
  request.resumeFromTestId = unlessEmpty(std::move(arguments.resumeFromTestId));
  request.resumeFromTestName = unlessEmpty(std::move(arguments.resumeFromTestName));
  request.iosProjectPath = unlessEmpty(std::move(arguments.iosProjectPath));
  request.bundleIdentifier = unlessEmpty(std::move(arguments.bundleIdentifier));
  request.androidProjectPath = unlessEmpty(std::move(arguments.androidProjectPath));
  request.applicationId = unlessEmpty(std::move(arguments.applicationId));

  const std::string path = Dispatch::writeRequest(request, "explore request", services);
  const auto launch = Dispatch::launchApp(services);

  std::string text = "Exploration dispatched to Corvane.\n";
  text += "\n  " + AnswerTexts::requestIdLine(request.requestId, 13);
  text += "\n  Project:     " + request.projectName;
  text += "\n  Goal:        " + request.goal;
  text += "\n  Budget:      " + describeBudget(request.maxCreditSpend);
  text += "\n  File:        " + path;
  text += "\n  Corvane.app: " + launch.describe();
  text.append(AnswerTexts::beforeNextCall) +=
      Dispatch::getResultCall(request.requestId, 120) +
      " and repeat until terminal. Exploration takes minutes (status \"authoring\" carries "
      "live activity). On \"authored\", run_test the authoredTest.testName to confirm it's a "
      "deterministic regression guard. For the next flow, decide charted vs uncharted: study "
      "the exhaust (describe_project: world map + authored steps) and author charted neighbors "
      "yourself via create_test + reuseSteps; keep exploring where the map is blank.";
  return ToolsCallResult::success(std::move(text));
}

}  // namespace

MCPTool makeExploreFlowTool(const ToolServices& services) {
  return {
      name, description, [] { return schemaOf<Arguments>(OtherProperties::refused); },
      [services](ToolCall sent) { return call(takeArguments<Arguments>(sent, name), services); }};
}

}  // namespace corvane
