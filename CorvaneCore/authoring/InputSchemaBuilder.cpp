#include "CorvaneCore/authoring/InputSchemaBuilder.h"

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/StepDefinition.h"
#include "CorvaneCore/authoring/Vocabularies.h"

namespace corvane {

namespace {

using namespace SchemaParts;

constexpr const char* reverseDnsPattern = "^[^\\s]+\\.[^\\s]+$";

JsonObject projectProperties() {
  return {
      {"projectName",
       ofType("string", "Project name as it should appear in Corvane's project list.")},
      {"targetPlatform", with(wordOf<AgentTargetPlatform>("Mobile platform under test."), "default",
                              rawValue(AgentTargetPlatform::iOS))},
      {"iosProjectPath",
       ofType("string",
              "Absolute path of the iOS project root (the folder holding the Xcode project). "
              "Required when Corvane builds an iOS target, that is with buildFirst omitted or "
              "true. Omit it, together with buildFirst:false, for preinstalled or system apps.")},
      {"bundleIdentifier",
       with(ofType("string",
                   "Reverse-DNS bundle identifier of the Xcode target, e.g. com.example.myapp; "
                   "never the app's display name. Required when targetPlatform is iOS."),
            "pattern", reverseDnsPattern)},
      {"androidProjectPath",
       ofType("string",
              "Absolute path of the Android project root. Required when Corvane builds an Android "
              "target, that is with buildFirst omitted or true. Omit it, together with "
              "buildFirst:false, for preinstalled apps.")},
      {"applicationId",
       with(ofType("string",
                   "Reverse-DNS applicationId from the Gradle build file, e.g. com.example.myapp; "
                   "never the app's display name. Required when targetPlatform is android."),
            "pattern", reverseDnsPattern)},
  };
}

JsonObject testProperties() {
  return {
      {"testName", ofType("string", "Test name (a single test is created per call).")},
      {"testDescription", ofType("string", "Optional human-readable description of the test.")},
      {"testIndex", with(ofType("integer", "Position of the test in the project. Defaults to 0."),
                         "default", 0)},
      {"version",
       with(ofType("string", "Payload version. Leave it at the default."), "default", "1.0")},
      {"suiteName",
       ofType("string",
              "Optional suite to file the test under. Omit to use the default 'Agent' suite for "
              "agent-authored tests.")},
      {"selfHealingMode",
       with(wordOf<SelfHealingMode>(
                "'off' runs the steps exactly as written. 'fullTest' lets Corvane adapt at run "
                "time when a step fails because the screen changed (moved or relabelled controls, "
                "an unexpected sheet); set it on tests that branch on state."),
            "default", rawValue(SelfHealingMode::off))},
  };
}

JsonObject runProperties() {
  return {
      {"autoRun",
       with(ofType("boolean",
                   "true: Corvane builds, installs and runs the test. false: Corvane only imports "
                   "and shows it, and the user starts it."),
            "default", true)},
      {"buildFirst",
       ofType("boolean",
              "Only meaningful with autoRun true. Omitted or true: Corvane builds and installs the "
              "app as part of the trigger; this is the default, so do not build out-of-band first. "
              "false: run the app that is already on the device, ONLY for preinstalled/system apps "
              "or a binary that you installed yourself (on iOS pass simulatorUDID with it).")},
      {"simulatorUDID",
       with(ofType("string",
                   "iOS only: UDID of the simulator to run on. Pass it whenever buildFirst is "
                   "false after you installed the app yourself: several simulators often share a "
                   "device type, and only the UDID tells them apart (see `xcrun simctl list "
                   "devices booted`)."),
            "pattern", "^[A-Fa-f0-9]{8}(-[A-Fa-f0-9]{4}){3}-[A-Fa-f0-9]{12}$")},
  };
}

/// The step types that a test is composed of, in the order they are offered in, and whether the
/// schema offers them a conditional branch.
struct OfferedType {
  InteractionType type;
  bool mayBranch;
};
constexpr std::array offeredTypes{
    OfferedType{InteractionType::visualAssert, true},
    OfferedType{InteractionType::builtIn, true},
    OfferedType{InteractionType::delay, true},
    OfferedType{InteractionType::waitToLoad, true},
    OfferedType{InteractionType::runTest, true},
    OfferedType{InteractionType::reuseSteps, false},
    OfferedType{InteractionType::userDefined, false},
};

JsonObject interactions() {
  // The three bookends alone are three steps.
  constexpr int fewestSteps = 3;
  const JsonObject childSchema = branchChildSchema();
  AnyCodable::Array definitions;
  for (const auto& [type, mayBranch] : offeredTypes) {
    InteractionDefinition definition = definitionOf(type);
    if (mayBranch) definition = std::move(definition).children(childSchema);
    definitions.emplace_back(std::move(definition).schema());
  }
  JsonObject items;
  items.set("oneOf", std::move(definitions));
  JsonObject schema = ofType(
      "array",
      "The ordered steps of the test. The first is builtIn/terminateApplication, the second "
      "builtIn/openApplication with description '{{APP_NAME}}', the last "
      "builtIn/terminateApplication. create_test is the composition surface: reference existing "
      "tests (runTest), embed reusable building blocks (userDefined), clone proven step ranges "
      "(reuseSteps), and join them with visualAssert probes, waits and builtIn commands. Concrete "
      "steps (tap/input/scroll/drag) are authored with explore_flow.");
  schema.set("minItems", fewestSteps);
  schema.set("items", std::move(items));
  return schema;
}

}  // namespace

AnyCodable InputSchemaBuilder::build() {
  JsonObject properties;
  for (const JsonObject& group : {projectProperties(), testProperties(), runProperties()}) {
    for (const auto& [key, schema] : group) properties.set(key, schema);
  }
  properties.set("interactions", interactions());
  JsonObject schema{{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                    {"type", "object"},
                    {"required", AnyCodable::Array{"projectName", "testName", "interactions"}},
                    {"additionalProperties", false}};
  schema.set("properties", std::move(properties));
  return schema;
}

std::vector<IndividualInteractionDescriptor> InputSchemaBuilder::interactionDescriptors() {
  std::vector<IndividualInteractionDescriptor> descriptors;
  for (const auto& row : Vocabulary<InteractionType>::rows) {
    descriptors.push_back({std::string(row.rawValue),
                           std::string(AuthoringContract::guidance(row.value)),
                           definitionOf(row.value).schema()});
  }
  return descriptors;
}

}  // namespace corvane
