#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/authoring/vocabulary/BuiltInCommand.h"
#include "CorvaneCore/authoring/vocabulary/InteractionType.h"
#include "CorvaneCore/json/Record.h"

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

}  // namespace corvane
