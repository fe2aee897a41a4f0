#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/files/RecordFile.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane {

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

}  // namespace corvane
