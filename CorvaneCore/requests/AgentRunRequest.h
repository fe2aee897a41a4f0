#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "CorvaneCore/files/RecordFile.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/json/TaggedUnion.h"
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
      std::vector<std::string> testNames;

      static constexpr auto fields() {
        return FieldList(field("testNames", &TestsByName::testNames));
      }
      friend bool operator==(const TestsByName&, const TestsByName&) = default;
    };
    /// Every test of one suite.
    struct SuiteByName {
      std::string suiteName;

      static constexpr auto fields() {
        return FieldList(field("suiteName", &SuiteByName::suiteName));
      }
      friend bool operator==(const SuiteByName&, const SuiteByName&) = default;
    };
    /// Every test of the project.
    struct AllSuites {
      static constexpr auto fields() { return FieldList(); }
      friend bool operator==(const AllSuites&, const AllSuites&) = default;
    };

    static constexpr std::string_view tagKey = "type";
    /// The alternatives stand in the order of Kind.
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
  std::optional<std::string> simulatorUDID;
  Date createdAt;

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

}  // namespace corvane
