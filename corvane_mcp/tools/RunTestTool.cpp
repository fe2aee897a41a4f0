#include <algorithm>
#include <variant>

#include "CorvaneCore/authoring/TestPayloadArguments.h"
#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/tools/ToolArguments.h"
#include "corvane_mcp/tools/Tools.h"

namespace corvane {

namespace {

constexpr std::string_view name = "run_test";

constexpr std::string_view description =
    R"(Run EXISTING Corvane test(s) and get a requestId to track the run. To author a NEW test, use create_test instead. If you are not certain of the project, test or suite name, call describe_project first — do not guess.

Target exactly ONE of:
  • testNames: ["Login", "Checkout"] — specific tests, by exact case-sensitive name
  • suiteName: "Smoke" — every test in that suite
  • runAll: true — the full regression: every test in the project (slow)

What happens:
  1. The request file is written to Corvane's AgentRunRequests folder, and Corvane.app is launched if it is not already running.
  2. Corvane builds, installs and runs end to end when the project is build-configured — do NOT run xcodebuild/gradle yourself first, just dispatch. buildFirst omitted = the project's "Build before scheduled runs" setting decides; true = force a rebuild; false = run the binary already on the device.
  3. This tool returns IMMEDIATELY with a requestId. Follow it with get_result (waitSeconds: 120) and repeat until the status is terminal. Concurrent requests queue FIFO; cancel stale queued requests with cancel_run. get_status shows whether Corvane is idle or which request it is running.

params substitutes runtime values into the $placeholders that parameterized tests declare, e.g. {"username": "qa@example.com"} fills $username.)";

using Target = AgentRunRequest::Target;

struct Arguments {
  std::optional<std::string> projectName;
  std::optional<std::vector<std::string>> testNames;
  std::optional<std::string> suiteName;
  std::optional<bool> runAll;
  std::optional<std::map<std::string, std::string>> params;
  std::optional<bool> buildFirst;
  std::optional<std::string> simulatorUDID;
  std::optional<std::string> targetPlatform;

  static auto arguments() {
    using A = Arguments;
    return std::tuple(
        argument("projectName", &A::projectName, "Exact Corvane project name. Required.")
            .required(),
        argument("testNames", &A::testNames,
                 "Run these specific tests by exact name. Mutually exclusive with suiteName and "
                 "runAll.")
            .with("minItems", 1),
        argument("suiteName", &A::suiteName,
                 "Run every test in this suite. Mutually exclusive with testNames and runAll."),
        argument("runAll", &A::runAll,
                 "true = run all tests in the project. Mutually exclusive with testNames and "
                 "suiteName.")
            .with("default", false),
        argument("params", &A::params,
                 "Optional runtime values for $param placeholders in parameterized tests. Keys are "
                 "parameter names without the $."),
        argument("buildFirst", &A::buildFirst,
                 "Optional. Omit to use the project's 'Build before scheduled runs' setting — the "
                 "default; Corvane builds + installs as part of the trigger, don't build "
                 "out-of-band first. true = force a rebuild. false = run against the binary "
                 "already on the device — ONLY for preinstalled/system apps or a binary you "
                 "already installed for your own debugging that this run must reuse (on iOS pass "
                 "simulatorUDID with it, see that field)."),
        argument("simulatorUDID", &A::simulatorUDID,
                 "iOS only: UDID of the simulator to run on. PASS THIS whenever you use "
                 "buildFirst:false after installing the app yourself — several simulators often "
                 "share a name ('iPhone 17'), so the UDID is the only unambiguous identity (yours "
                 "is in `xcrun simctl list devices booted`, or the -destination you built with). "
                 "Without it Corvane binds the simulator that actually has the app installed, and "
                 "reports blocked(appNotInstalled) when none does.")
            .with("pattern", TestPayloadArguments::simulatorPattern),
        argument("targetPlatform", &A::targetPlatform,
                 "Optional. Omit to use the project's currently selected platform.")
            .oneOf<AgentTargetPlatform>());
  }
};

/// The names of the target arguments that were sent; a false runAll was not.
std::vector<std::string_view> sentTargets(const Arguments& arguments) {
  std::vector<std::string_view> sent;
  if (arguments.testNames) sent.emplace_back("testNames");
  if (arguments.suiteName) sent.emplace_back("suiteName");
  if (arguments.runAll == true) sent.emplace_back("runAll");
  return sent;
}

std::string joined(const std::vector<std::string_view>& words) {
  std::string text;
  for (const auto word : words) text.append(text.empty() ? "" : ", ").append(word);
  return text;
}

/// The one target that the arguments name, or the refusal when they do not name exactly one.
std::variant<Target, ToolsCallResult> readTarget(Arguments& arguments) {
  const auto sent = sentTargets(arguments);
  if (sent.size() != 1) {
    return invalidArguments("Specify exactly one of testNames, suiteName, runAll:true. You sent: " +
                            (sent.empty() ? "none" : joined(sent)) + ".");
  }
  if (auto& names = arguments.testNames) {
    const auto isEmpty = [](const std::string& name) { return name.empty(); };
    if (names->empty() || std::any_of(names->begin(), names->end(), isEmpty)) {
      return invalidArguments("testNames must contain at least one non-empty test name.");
    }
    return Target{Target::TestsByName{std::move(*names)}};
  }
  if (auto& suite = arguments.suiteName) {
    if (suite->empty()) return invalidArguments("suiteName must be non-empty.");
    return Target{Target::SuiteByName{std::move(*suite)}};
  }
  return Target{Target::AllSuites{}};
}

std::string describe(const Target& target) {
  if (const auto* suite = std::get_if<Target::SuiteByName>(&target.choice)) {
    return "suite: '" + suite->suiteName + "'";
  }
  const auto* tests = std::get_if<Target::TestsByName>(&target.choice);
  if (!tests) return "all tests";
  std::string text;
  for (const auto& name : tests->testNames) {
    text += (text.empty() ? "tests: '" : ", '") + name + "'";
  }
  return text;
}

std::string_view describe(std::optional<bool> buildFirst) {
  if (!buildFirst) return "project setting";
  return *buildFirst ? "true" : "false (runs the binary already on the device)";
}

ToolsCallResult call(Arguments arguments, const ToolServices& services) {
  if (arguments.projectName.value_or("").empty()) {
    return invalidArguments(
        "'projectName' is required and must be non-empty. Use the exact project name as it appears "
        "in Corvane's project list.");
  }
  auto target = readTarget(arguments);
  if (auto* refusal = std::get_if<ToolsCallResult>(&target)) return std::move(*refusal);

  auto request = Dispatch::newRequest<AgentRunRequest>(services);
  request.projectName = std::move(*arguments.projectName);
  request.target = std::move(std::get<Target>(target));
  request.params = std::move(arguments.params);
  request.buildFirst = arguments.buildFirst;
  request.targetPlatform = std::move(arguments.targetPlatform);
  if (arguments.simulatorUDID) request.simulatorUDID = trimWhitespace(*arguments.simulatorUDID);

  const std::string path = Dispatch::writeRequest(request, "run request", services);
  const auto launch = Dispatch::launchApp(services);

  std::string text = "Run request dispatched to Corvane.\n";
  text += "\n  " + AnswerTexts::requestIdLine(request.requestId, 13);
  text += "\n  Project:     " + request.projectName;
  text += "\n  Target:      " + describe(request.target);
  text.append("\n  buildFirst:  ").append(describe(request.buildFirst));
  text += "\n  File:        " + path;
  text += "\n  Corvane.app: " + launch.describe();
  text.append(AnswerTexts::beforeNextCall) +=
      Dispatch::getResultCall(request.requestId, 120) + " and repeat until the status is terminal.";
  return ToolsCallResult::success(std::move(text));
}

}  // namespace

MCPTool makeRunTestTool(const ToolServices& services) {
  return {
      name, description, [] { return schemaOf<Arguments>(OtherProperties::refused); },
      [services](ToolCall sent) { return call(takeArguments<Arguments>(sent, name), services); }};
}

}  // namespace corvane
