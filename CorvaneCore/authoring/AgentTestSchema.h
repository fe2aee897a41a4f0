#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/authoring/InteractionType.h"
#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane {

/// One step of a test. Strings that name a value of a vocabulary are kept as they came, so that an
/// unknown one reaches the validator.
struct AgentInteraction {
  /// An InteractionType.
  std::string type;
  /// The chip header; the app derives it from the type, authors never send it.
  std::optional<std::string> title;
  /// What the step works with at run time: text to match or to type, a command's detail, a label.
  std::string description;
  std::optional<JsonObject> parameters;
  /// An AISegmentationMode.
  std::optional<std::string> aiSegmentationMode;
  /// Whether the app reuses the learned position of this step.
  std::optional<bool> memoryEnabled;
  /// The conditional branch that runs after this step; one level only.
  std::optional<std::vector<AgentInteraction>> children;
  /// On a child: a PreviousStepCondition.
  std::optional<std::string> previousStepCondition;
  /// runTest and reuseSteps: the UUID or the name of an existing test.
  std::optional<std::string> referencedTestId;
  std::optional<std::string> referencedTestName;
  /// runTest: values handed to the referenced test.
  std::optional<std::map<std::string, std::string>> arguments;
  /// reuseSteps: the first and the last step to clone, 0-based.
  std::optional<std::int64_t> fromStep;
  std::optional<std::int64_t> toStep;
  /// userDefined: the name of a building block in the user's library.
  std::optional<std::string> udiName;
  std::optional<bool> visualCheckpoint;

  static constexpr auto fields() {
    using R = AgentInteraction;
    return FieldList(
        field("type", &R::type), field("title", &R::title), field("description", &R::description),
        field("parameters", &R::parameters), field("aiSegmentationMode", &R::aiSegmentationMode),
        field("memoryEnabled", &R::memoryEnabled), field("children", &R::children),
        field("previousStepCondition", &R::previousStepCondition),
        field("referencedTestId", &R::referencedTestId),
        field("referencedTestName", &R::referencedTestName), field("arguments", &R::arguments),
        field("fromStep", &R::fromStep), field("toStep", &R::toStep), field("udiName", &R::udiName),
        field("visualCheckpoint", &R::visualCheckpoint));
  }

  [[nodiscard]] std::optional<InteractionType> knownType() const {
    return fromRawValue<InteractionType>(type);
  }

  /// The parameter `key` when it is held as a T, one of AnyCodable's alternatives, else nullptr: a
  /// value of another kind counts as absent.
  template <class T>
  [[nodiscard]] const T* parameter(std::string_view key) const {
    return parameters ? parameters->findAs<T>(key) : nullptr;
  }

  /// The command of a builtIn step that names a known one; nothing for every other step.
  [[nodiscard]] std::optional<BuiltInCommand> command() const {
    const auto* raw =
        knownType() == InteractionType::builtIn ? parameter<std::string>("command") : nullptr;
    return raw ? fromRawValue<BuiltInCommand>(*raw) : std::nullopt;
  }
  [[nodiscard]] bool isCommand(BuiltInCommand wanted) const { return command() == wanted; }

  [[nodiscard]] bool hasChildren() const { return children && !children->empty(); }
};

extern template struct RecordCodec<AgentInteraction>;

/// One test of a payload.
struct AgentTest {
  std::string name;
  std::optional<std::string> description;
  /// The position of the test in the payload.
  std::int64_t index = 0;
  /// The steps in order.
  std::vector<AgentInteraction> interactions;
  /// Values for the named parameters of the test.
  std::optional<std::map<std::string, std::string>> parameterValues;
  /// A SelfHealingMode, kept as it came.
  std::optional<std::string> selfHealingMode;

  static constexpr auto fields() {
    using R = AgentTest;
    return FieldList(field("name", &R::name), field("description", &R::description),
                     field("index", &R::index), field("interactions", &R::interactions),
                     field("parameterValues", &R::parameterValues),
                     field("selfHealingMode", &R::selfHealingMode));
  }
};

extern template struct RecordCodec<AgentTest>;

/// The test payload: tests for Corvane.app to import into a project and, if asked, to run. The app
/// consumes the file and answers with a result file of the request's id.
struct AgentTestSchema {
  static constexpr std::int64_t currentSchemaVersion = 1;
  static constexpr std::string_view fileSuffix = ".corvane.json";

  std::int64_t version = currentSchemaVersion;
  /// The app creates the project if it does not exist.
  std::string projectName;
  /// An AgentTargetPlatform, kept as it came.
  std::optional<std::string> targetPlatform;
  std::optional<std::string> iosProjectPath;
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> androidProjectPath;
  std::optional<std::string> applicationId;
  Date createdAt;
  std::vector<AgentTest> tests;
  std::optional<bool> autoRun;
  std::optional<bool> buildFirst;
  std::optional<std::string> requestId;
  std::optional<std::string> suiteName;
  std::optional<std::string> clientName;
  std::optional<std::string> simulatorUDID;

  static constexpr auto fields() {
    using R = AgentTestSchema;
    return FieldList(field("version", &R::version), field("projectName", &R::projectName),
                     field("targetPlatform", &R::targetPlatform),
                     field("iosProjectPath", &R::iosProjectPath),
                     field("bundleIdentifier", &R::bundleIdentifier),
                     field("androidProjectPath", &R::androidProjectPath),
                     field("applicationId", &R::applicationId), field("createdAt", &R::createdAt),
                     field("tests", &R::tests), field("autoRun", &R::autoRun),
                     field("buildFirst", &R::buildFirst), field("requestId", &R::requestId),
                     field("suiteName", &R::suiteName), field("clientName", &R::clientName),
                     field("simulatorUDID", &R::simulatorUDID));
  }

  /// Every interaction of every test in order, each followed by its children. The pointers live as
  /// long as the payload is not changed.
  [[nodiscard]] std::vector<const AgentInteraction*> allInteractions() const;

  /// "<project>-<first test>-<request id>.corvane.json" with both names made fit for a file name
  /// and, so that the whole never exceeds what a file system takes, shortened. `now`, in
  /// milliseconds, stands in for a missing request id.
  [[nodiscard]] std::string fileName(FileTime now) const;
  [[nodiscard]] std::filesystem::path fileURL(const AgentPaths& in, FileTime now) const {
    return in.agentImportsDirectory() / fileName(now);
  }
  /// Throws FileError or DecodeError. Any version is accepted.
  [[nodiscard]] static AgentTestSchema read(const std::filesystem::path& from) {
    return readRecord<AgentTestSchema>(from);
  }
};

extern template struct RecordCodec<AgentTestSchema>;

}  // namespace corvane
