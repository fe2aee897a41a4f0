#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/InputSchemaBuilder.h"
#include "CorvaneCore/authoring/TestPayloadArguments.h"
#include "CorvaneCore/authoring/TestValidator.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "corvane_mcp/tools/ToolArguments.h"
#include "corvane_mcp/tools/Tools.h"

namespace corvane {

namespace {

namespace list_interaction_types {

constexpr std::string_view name = "list_interaction_types";

constexpr std::string_view description =
    "OPTIONAL: Returns prose guidance on Corvane interaction types and parameters. The "
    "machine-readable JSON Schema is already in create_test.inputSchema — agents rarely need "
    "this tool. Use it only for edge-case guidance (e.g. when to pick 'regionOfInterest: "
    "top20' vs 'content', when to enable memoryEnabled, or to understand the "
    "openApplication/terminateApplication bookend convention).";

struct Arguments {
  std::optional<std::string> type;

  static auto arguments() {
    return std::tuple(argument("type", &Arguments::type,
                               "Optional. Return the guidance for this interaction type only. Omit "
                               "it for the whole contract.")
                          .oneOf<InteractionType>());
  }
};

ToolsCallResult call(const Arguments& arguments) {
  if (!arguments.type) return ToolsCallResult::success(AuthoringContract::fullMarkdown());
  const auto type = fromRawValue<InteractionType>(*arguments.type);
  return ToolsCallResult::success(
      std::string(type ? AuthoringContract::guidance(*type) : AuthoringContract::noExtraGuidance));
}

}  // namespace list_interaction_types

namespace create_test {

constexpr std::string_view name = "create_test";

constexpr std::string_view description =
    R"(COMPOSE a Corvane test from existing pieces and dispatch it. create_test does NOT author concrete steps (tap/input/scroll/drag) — those come from explore_flow, which has eyes on the device and grounds each step on the real screen.

What you assemble here:
  • runTest — invoke another existing test inline.
  • userDefined — embed a reusable building block (UDI) of the user's library.
  • reuseSteps — clone a proven range of steps of an existing test.
  • visualAssert — probe the screen with a yes/no question.
  • delay, waitToLoad and builtIn commands — the glue in between.
A recovery branch (`children` of a step) may also hold concrete steps, to dismiss an OS interrupt.

Call describe_project FIRST: it lists the exact names of projects, tests, their 0-based steps and the building blocks. Do not guess.

Every test starts with builtIn/terminateApplication, then builtIn/openApplication with description '{{APP_NAME}}', and ends with builtIn/terminateApplication. list_interaction_types has the rules that the schema cannot express.

What happens:
  1. The test is validated. On errors nothing is dispatched, and the answer lists every issue with its path and, where there is one, a suggestion: fix them and call create_test again.
  2. The test is written to Corvane's AgentImports folder, and Corvane.app is launched if it is not already running. Corvane creates the project if it does not exist; a test of the same projectName and testName is updated in place.
  3. This tool returns IMMEDIATELY with a requestId. Unless autoRun is false, Corvane builds, installs and runs the test end to end — do NOT build or install the app yourself first. Follow it with get_result (waitSeconds: 120) and repeat until the status is terminal.)";

std::string validationFailure(const ValidationResult& validation) {
  return "VALIDATION FAILED. Fix the issues below and call create_test again.\nEach issue has: "
         "severity, code, path, message, optional suggestion.\n\n" +
         indentedJson(AgentWire::encode(validation));
}

std::string_view whatHappensNext(const AgentTestSchema& payload) {
  if (!payload.autoRun.value_or(true)) {
    return "Because autoRun=false, the test will appear in the Corvane UI; the user clicks Run to "
           "execute.";
  }
  if (!payload.buildFirst.value_or(true)) {
    return "Because autoRun=true, Corvane will run against the app binary already on the device "
           "(buildFirst=false).";
  }
  return "Because autoRun=true, Corvane will build the app, boot the simulator, install, and run.";
}

/// Returns the path of the file written.
std::string writePayload(const AgentTestSchema& payload, const ToolServices& services) {
  const auto file = payload.fileURL(services.paths, services.clock.now());
  std::size_t byteCount = 0;
  try {
    const std::string json = AgentWire::encode(payload);
    byteCount = json.size();
    writeFileWhole(file, json);
  } catch (const std::exception& error) {
    throw JSONRPCError(JSONRPCError::internalError,
                       std::string("Failed to write test file: ") + error.what());
  }
  std::string path = displayPath(file);
  services.logger.info("Wrote test file: " + path + " (" + std::to_string(byteCount) + " bytes)");
  return path;
}

/// Returns what the answer says of the app.
std::string launchApp(const ToolServices& services) {
  const auto launch = Dispatch::launchApp(services);
  if (launch.app) {
    services.logger.info("Launched Corvane.app at " + displayPath(*launch.app) +
                         ": success=" + (launch.succeeded ? "true" : "false"));
  }
  return launch.describe();
}

ToolsCallResult call(JsonObject& sent, const ToolServices& services) {
  auto arguments = takeDeclared<TestPayloadArguments>(
      sent, [&services](std::string_view argument, std::string_view why) {
        services.logger.warn(droppedNote(argument, why));
      });
  if (arguments.interactions) {
    for (const auto& note : arguments.interactions->dropped) services.logger.warn(note);
  }
  if (auto reason = arguments.refusal()) return ToolsCallResult::failure(std::move(*reason));
  auto payload = Dispatch::newRequest<AgentTestSchema>(services);
  std::move(arguments).moveInto(payload);

  const ValidationResult validation = TestValidator::validate(payload);
  if (validation.hasErrors()) {
    services.logger.warn("create_test validation failed with " +
                         std::to_string(validation.errors().size()) + " error(s)");
    return ToolsCallResult::failure(validationFailure(validation));
  }
  const std::string path = writePayload(payload, services);
  const std::string app = launchApp(services);

  const std::string& requestId = *payload.requestId;
  std::string text = "Test '" + payload.tests.front().name + "' dispatched to Corvane.\n";
  text += "\n  " + AnswerTexts::requestIdLine(requestId, 13);
  text += "\n  File:        " + path;
  text.append("\n  autoRun:     ").append(payload.autoRun.value_or(true) ? "true" : "false");
  text += "\n  Corvane.app: " + app;
  text += "\n\nCorvane's file watcher will pick up the file within a second. ";
  text += whatHappensNext(payload);
  text.append(AnswerTexts::beforeNextCall) +=
      Dispatch::getResultCall(requestId, 120) +
      " and repeat until the status is terminal. A first build can take several minutes.";
  return ToolsCallResult::success(std::move(text));
}

AnyCodable inputSchema() {
  try {
    return InputSchemaBuilder::build();
  } catch (const std::exception& error) {
    throw JSONRPCError(JSONRPCError::internalError,
                       std::string("Failed to build schema: ") + error.what());
  }
}

}  // namespace create_test

}  // namespace

MCPTool makeListInteractionTypesTool() {
  using namespace list_interaction_types;
  return {name, description, [] { return schemaOf<Arguments>(OtherProperties::refused); },
          [](ToolCall sent) { return call(takeArgumentsIfAny<Arguments>(sent)); }};
}

MCPTool makeCreateTestTool(const ToolServices& services) {
  using namespace create_test;
  return {name, description, inputSchema,
          [services](ToolCall sent) { return call(requireArguments(sent, name), services); }};
}

}  // namespace corvane
