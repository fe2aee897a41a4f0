#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/json/ArgumentTable.h"

namespace corvane {

/// A note for the log on what was sent but not taken, e.g. "autoRun dropped: expected a boolean".
[[nodiscard]] std::string droppedNote(std::string_view place, std::string_view why);

/// The steps of a test as an argument. Of each step, what does not fit counts as absent; of a
/// branch, what lies deeper than one level.
struct TestSteps {
  std::vector<AgentInteraction> list;
  /// A note on each thing that counts as absent.
  std::vector<std::string> dropped;
};

template <>
struct Codec<TestSteps> {
  /// Throws DecodeError for everything but an array of objects.
  static TestSteps decode(AnyCodable&& value, const DecodePath& at);
};

template <>
struct ArgumentType<TestSteps> {
  static JsonObject schema();
};

/// What create_test is told: the one table that its schema and its reading come from.
struct TestPayloadArguments {
  std::optional<std::string> projectName;
  std::optional<std::string> targetPlatform;
  std::optional<std::string> iosProjectPath;
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> androidProjectPath;
  std::optional<std::string> applicationId;
  std::optional<std::string> testName;
  std::optional<std::string> testDescription;
  std::optional<std::int64_t> testIndex;
  std::optional<std::string> version;
  std::optional<std::string> suiteName;
  std::optional<std::string> selfHealingMode;
  std::optional<bool> autoRun;
  std::optional<bool> buildFirst;
  std::optional<std::string> simulatorUDID;
  std::optional<TestSteps> interactions;

  static constexpr const char* reverseDnsPattern = "^[^\\s]+\\.[^\\s]+$";
  /// Of a simulator's UDID, wherever an argument takes one.
  static constexpr const char* simulatorPattern =
      "^[A-Fa-f0-9]{8}(-[A-Fa-f0-9]{4}){3}-[A-Fa-f0-9]{12}$";

  static auto arguments() {
    using A = TestPayloadArguments;
    return std::tuple(
        argument("projectName", &A::projectName,
                 "Project name as it should appear in Corvane's project list.")
            .required(),
        argument("targetPlatform", &A::targetPlatform, "Mobile platform under test.")
            .oneOf<AgentTargetPlatform>()
            .with("default", rawValue(AgentTargetPlatform::iOS)),
        argument("iosProjectPath", &A::iosProjectPath,
                 "Absolute path of the iOS project root (the folder holding the Xcode project). "
                 "Required when Corvane builds an iOS target, that is with buildFirst omitted or "
                 "true. Omit it, together with buildFirst:false, for preinstalled or system apps."),
        argument("bundleIdentifier", &A::bundleIdentifier,
                 "Reverse-DNS bundle identifier of the Xcode target, e.g. com.example.myapp; "
                 "never the app's display name. Required when targetPlatform is iOS.")
            .with("pattern", reverseDnsPattern),
        argument(
            "androidProjectPath", &A::androidProjectPath,
            "Absolute path of the Android project root. Required when Corvane builds an Android "
            "target, that is with buildFirst omitted or true. Omit it, together with "
            "buildFirst:false, for preinstalled apps."),
        argument("applicationId", &A::applicationId,
                 "Reverse-DNS applicationId from the Gradle build file, e.g. com.example.myapp; "
                 "never the app's display name. Required when targetPlatform is android.")
            .with("pattern", reverseDnsPattern),
        argument("testName", &A::testName, "Test name (a single test is created per call).")
            .required(),
        argument("testDescription", &A::testDescription,
                 "Optional human-readable description of the test."),
        argument("testIndex", &A::testIndex, "Position of the test in the project. Defaults to 0.")
            .with("default", 0),
        argument("version", &A::version, "Payload version. Leave it at the default.")
            .with("default", "1.0"),
        argument("suiteName", &A::suiteName,
                 "Optional suite to file the test under. Omit to use the default 'Agent' suite for "
                 "agent-authored tests."),
        argument("selfHealingMode", &A::selfHealingMode,
                 "'off' runs the steps exactly as written. 'fullTest' lets Corvane adapt at run "
                 "time when a step fails because the screen changed (moved or relabelled controls, "
                 "an unexpected sheet); set it on tests that branch on state.")
            .oneOf<SelfHealingMode>()
            .with("default", rawValue(SelfHealingMode::off)),
        argument("autoRun", &A::autoRun,
                 "true: Corvane builds, installs and runs the test. false: Corvane only imports "
                 "and shows it, and the user starts it.")
            .with("default", true),
        argument(
            "buildFirst", &A::buildFirst,
            "Only meaningful with autoRun true. Omitted or true: Corvane builds and installs the "
            "app as part of the trigger; this is the default, so do not build out-of-band first. "
            "false: run the app that is already on the device, ONLY for preinstalled/system apps "
            "or a binary that you installed yourself (on iOS pass simulatorUDID with it)."),
        argument("simulatorUDID", &A::simulatorUDID,
                 "iOS only: UDID of the simulator to run on. Pass it whenever buildFirst is "
                 "false after you installed the app yourself: several simulators often share a "
                 "device type, and only the UDID tells them apart (see `xcrun simctl list "
                 "devices booted`).")
            .with("pattern", simulatorPattern),
        argument(
            "interactions", &A::interactions,
            "The ordered steps of the test. The first is builtIn/terminateApplication, the second "
            "builtIn/openApplication with description '{{APP_NAME}}', the last "
            "builtIn/terminateApplication. create_test is the composition surface: reference "
            "existing tests (runTest), embed reusable building blocks (userDefined), clone proven "
            "step ranges (reuseSteps), and join them with visualAssert probes, waits and builtIn "
            "commands. Concrete steps (" +
                listedTypes("/", isConcrete) + ") are authored with explore_flow.")
            .required());
  }

  /// Is told which argument is dropped and why.
  using OnMisfit = std::function<void(std::string_view, std::string_view)>;
  /// Reads these from a valid JSON text; nothing when it holds no object. Steps that are as they
  /// should be become steps without ever being values, as there may be thousands.
  [[nodiscard]] static std::optional<TestPayloadArguments> read(std::string_view json,
                                                                const OnMisfit& onMisfit);

  /// Why no payload can be made of these, if none can.
  [[nodiscard]] std::optional<std::string> refusal() const;

  /// Moves what these, which are not refused, say of the test into `payload`. Nothing that was not
  /// said is filled in, except for the test's index.
  void moveInto(AgentTestSchema& payload) &&;
};

}  // namespace corvane
