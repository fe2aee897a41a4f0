#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/authoring/AgentTest.h"
#include "CorvaneCore/files/RecordFile.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane {

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
