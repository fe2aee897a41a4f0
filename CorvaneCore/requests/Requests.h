#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane {

/// Asks Corvane.app to run tests that exist in one of its projects. The app consumes the file and
/// answers with a result file of the same id.
struct AgentRunRequest {
  static constexpr std::int64_t currentSchemaVersion = 1;
  static constexpr std::string_view fileSuffix = ".runrequest.json";

  /// Which tests to run.
  struct Target {
    enum class Kind { testsByName, suiteByName, allSuites };

    /// These tests, by exact name.
    struct TestsByName {
      static constexpr Kind kind = Kind::testsByName;

      std::vector<std::string> testNames;

      static constexpr auto fields() {
        return FieldList(field("testNames", &TestsByName::testNames));
      }
      friend bool operator==(const TestsByName&, const TestsByName&) = default;
    };
    /// Every test of one suite.
    struct SuiteByName {
      static constexpr Kind kind = Kind::suiteByName;

      std::string suiteName;

      static constexpr auto fields() {
        return FieldList(field("suiteName", &SuiteByName::suiteName));
      }
      friend bool operator==(const SuiteByName&, const SuiteByName&) = default;
    };
    /// Every test of the project.
    struct AllSuites {
      static constexpr Kind kind = Kind::allSuites;

      static constexpr auto fields() { return FieldList(); }
      friend bool operator==(const AllSuites&, const AllSuites&) = default;
    };

    static constexpr std::string_view tagKey = "type";
    std::variant<TestsByName, SuiteByName, AllSuites> choice;

    friend bool operator==(const Target&, const Target&) = default;
  };

  std::int64_t schemaVersion = currentSchemaVersion;
  std::string requestId;
  std::string projectName;
  Target target;
  std::optional<std::map<std::string, std::string>> params;
  std::optional<bool> buildFirst;
  std::optional<std::string> targetPlatform;
  std::optional<std::string> clientName;
  Date createdAt;
  std::optional<std::string> simulatorUDID;

  static constexpr auto fields() {
    using R = AgentRunRequest;
    return FieldList(field("schemaVersion", &R::schemaVersion), field("requestId", &R::requestId),
                     field("projectName", &R::projectName), field("target", &R::target),
                     field("params", &R::params), field("buildFirst", &R::buildFirst),
                     field("targetPlatform", &R::targetPlatform),
                     field("clientName", &R::clientName), field("createdAt", &R::createdAt),
                     field("simulatorUDID", &R::simulatorUDID));
  }

  /// The place of the request file; the id is used exactly as given.
  [[nodiscard]] static std::filesystem::path fileURL(std::string_view requestId,
                                                     const AgentPaths& in) {
    return in.agentRunRequestsDirectory() / std::string(requestId).append(fileSuffix);
  }
  /// Throws EncodeError or FileError.
  void write(const AgentPaths& in) const { writeRecord(*this, fileURL(requestId, in)); }
  /// Throws FileError or DecodeError. Any schema version is accepted.
  [[nodiscard]] static AgentRunRequest read(const std::filesystem::path& from) {
    return readRecord<AgentRunRequest>(from);
  }
};

template <>
struct Vocabulary<AgentRunRequest::Target::Kind> {
  using Kind = AgentRunRequest::Target::Kind;
  static constexpr std::array rows{
      VocabularyRow<Kind>{Kind::testsByName, "testsByName"},
      VocabularyRow<Kind>{Kind::suiteByName, "suiteByName"},
      VocabularyRow<Kind>{Kind::allSuites, "allSuites"},
  };
};

extern template struct RecordCodec<AgentRunRequest>;

/// Asks Corvane.app to explore the live app toward goals and to author one test per goal. The app
/// consumes the file and answers with a result file of the same id.
struct AgentExploreRequest {
  static constexpr std::int64_t currentSchemaVersion = 3;
  static constexpr std::string_view fileSuffix = ".explorerequest.json";

  std::int64_t schemaVersion = currentSchemaVersion;
  std::string requestId;
  /// Must exist, unless the identity of a new project is given below.
  std::string projectName;
  /// The goals, exactly as the agent sent them.
  std::string goal;
  std::optional<std::string> testName;
  /// Absent: the project's selected platform.
  std::optional<std::string> targetPlatform;
  /// In credits; absent: no limit.
  std::optional<double> maxCreditSpend;
  std::optional<std::string> clientName;
  /// A test to run as a proven prefix before exploring; the id wins when both are set.
  std::optional<std::string> resumeFromTestId;
  std::optional<std::string> resumeFromTestName;
  /// The identity of a project to create: folder and identifier of each platform, in pairs.
  std::optional<std::string> iosProjectPath;
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> androidProjectPath;
  std::optional<std::string> applicationId;
  Date createdAt;

  static constexpr auto fields() {
    using R = AgentExploreRequest;
    return FieldList(field("schemaVersion", &R::schemaVersion), field("requestId", &R::requestId),
                     field("projectName", &R::projectName), field("goal", &R::goal),
                     field("testName", &R::testName), field("targetPlatform", &R::targetPlatform),
                     field("maxCreditSpend", &R::maxCreditSpend),
                     field("clientName", &R::clientName),
                     field("resumeFromTestId", &R::resumeFromTestId),
                     field("resumeFromTestName", &R::resumeFromTestName),
                     field("iosProjectPath", &R::iosProjectPath),
                     field("bundleIdentifier", &R::bundleIdentifier),
                     field("androidProjectPath", &R::androidProjectPath),
                     field("applicationId", &R::applicationId), field("createdAt", &R::createdAt));
  }

  /// The place of the request file; the id is used exactly as given.
  [[nodiscard]] static std::filesystem::path fileURL(std::string_view requestId,
                                                     const AgentPaths& in) {
    return in.agentRunRequestsDirectory() / std::string(requestId).append(fileSuffix);
  }
  /// Throws EncodeError or FileError.
  void write(const AgentPaths& in) const { writeRecord(*this, fileURL(requestId, in)); }
  /// Throws FileError or DecodeError. Any schema version is accepted.
  [[nodiscard]] static AgentExploreRequest read(const std::filesystem::path& from) {
    return readRecord<AgentExploreRequest>(from);
  }
};

extern template struct RecordCodec<AgentExploreRequest>;

/// Asks Corvane.app to change what it knows without running a test: the user's library of building
/// blocks (UDIs), or a project's world map. The app consumes the file and answers with a result
/// file of the same id.
struct AgentLibraryRequest {
  static constexpr std::int64_t currentSchemaVersion = 1;
  static constexpr std::string_view fileSuffix = ".libraryrequest.json";

  enum class Action { extractUdi, deleteUdi, resetWorldMap };

  std::int64_t schemaVersion = currentSchemaVersion;
  std::string requestId;
  /// The source test's project, or the project whose map is reset; empty for a deletion, as the
  /// library belongs to the user.
  std::string projectName;
  Action action{};
  /// The source test of an extraction.
  std::optional<std::string> testName;
  std::optional<std::string> testId;
  /// The range of an extraction: 0-based, both ends included. 0 for the other actions.
  std::int64_t fromStep = 0;
  std::int64_t toStep = 0;
  /// The building block to make or to delete; empty for a reset.
  std::string udiName;
  /// Whether an extraction may replace a building block of its name.
  std::optional<bool> overwrite;
  std::optional<std::string> clientName;
  Date createdAt;

  static constexpr auto fields() {
    using R = AgentLibraryRequest;
    return FieldList(field("schemaVersion", &R::schemaVersion), field("requestId", &R::requestId),
                     field("projectName", &R::projectName), field("action", &R::action),
                     field("testName", &R::testName), field("testId", &R::testId),
                     field("fromStep", &R::fromStep), field("toStep", &R::toStep),
                     field("udiName", &R::udiName), field("overwrite", &R::overwrite),
                     field("clientName", &R::clientName), field("createdAt", &R::createdAt));
  }

  /// The place of the request file; the id is used exactly as given.
  [[nodiscard]] static std::filesystem::path fileURL(std::string_view requestId,
                                                     const AgentPaths& in) {
    return in.agentRunRequestsDirectory() / std::string(requestId).append(fileSuffix);
  }
  /// Throws EncodeError or FileError.
  void write(const AgentPaths& in) const { writeRecord(*this, fileURL(requestId, in)); }
  /// Throws FileError or DecodeError. Any schema version is accepted.
  [[nodiscard]] static AgentLibraryRequest read(const std::filesystem::path& from) {
    return readRecord<AgentLibraryRequest>(from);
  }
};

template <>
struct Vocabulary<AgentLibraryRequest::Action> {
  using Action = AgentLibraryRequest::Action;
  static constexpr std::array rows{
      VocabularyRow<Action>{Action::extractUdi, "extractUdi"},
      VocabularyRow<Action>{Action::deleteUdi, "deleteUdi"},
      VocabularyRow<Action>{Action::resetWorldMap, "resetWorldMap"},
  };
};

extern template struct RecordCodec<AgentLibraryRequest>;

/// Asks Corvane.app to abort a request it has already taken. The app reacts to the presence of the
/// file; its contents only say when and for which request it was dropped.
struct CancelMarker {
  static constexpr std::int64_t currentSchemaVersion = 1;
  static constexpr std::string_view fileSuffix = ".cancel";

  std::int64_t schemaVersion = currentSchemaVersion;
  std::string requestId;
  Date createdAt;

  static constexpr auto fields() {
    using R = CancelMarker;
    return FieldList(field("schemaVersion", &R::schemaVersion), field("requestId", &R::requestId),
                     field("createdAt", &R::createdAt));
  }

  [[nodiscard]] static std::filesystem::path fileURL(std::string_view requestId,
                                                     const AgentPaths& in) {
    return in.agentRunRequestsDirectory() / std::string(requestId).append(fileSuffix);
  }
  /// Throws EncodeError or FileError.
  void write(const AgentPaths& in) const { writeRecord(*this, fileURL(requestId, in)); }
};

extern template struct RecordCodec<CancelMarker>;

}  // namespace corvane
