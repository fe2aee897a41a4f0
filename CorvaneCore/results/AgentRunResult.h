#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/authoring/ValidationResult.h"
#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/json/Vocabulary.h"
#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane {

/// How far a dispatched request has come.
enum class RunStatus {
  received,
  queued,
  validating,
  importFailed,
  building,
  buildFailed,
  running,
  authoring,
  imported,
  authored,
  extracted,
  deleted,
  passed,
  failed,
  warning,
  cancelled,
  blocked,
  error,
};

template <>
struct Vocabulary<RunStatus> {
  struct Row {
    RunStatus value;
    std::string_view rawValue;
    bool terminal;
  };
  static constexpr std::array rows{
      Row{RunStatus::received, "received", false},
      Row{RunStatus::queued, "queued", false},
      Row{RunStatus::validating, "validating", false},
      Row{RunStatus::importFailed, "importFailed", true},
      Row{RunStatus::building, "building", false},
      Row{RunStatus::buildFailed, "buildFailed", true},
      Row{RunStatus::running, "running", false},
      Row{RunStatus::authoring, "authoring", false},
      Row{RunStatus::imported, "imported", true},
      Row{RunStatus::authored, "authored", true},
      Row{RunStatus::extracted, "extracted", true},
      Row{RunStatus::deleted, "deleted", true},
      Row{RunStatus::passed, "passed", true},
      Row{RunStatus::failed, "failed", true},
      Row{RunStatus::warning, "warning", true},
      Row{RunStatus::cancelled, "cancelled", true},
      Row{RunStatus::blocked, "blocked", true},
      Row{RunStatus::error, "error", true},
  };
};

/// Whether a request in this status is finished for good.
[[nodiscard]] constexpr bool isTerminal(RunStatus status) {
  return vocabularyRow(status).terminal;
}

/// The answer to one request of any kind, rewritten as the request advances. Fields that a kind of
/// request does not use are absent.
struct AgentRunResult {
  static constexpr std::int64_t currentSchemaVersion = 3;

  using Status = RunStatus;

  /// Live step progress of a running test.
  struct Progress {
    std::int64_t currentStep = 0;
    std::int64_t totalSteps = 0;
    std::optional<std::string> lastStepStatus;
    std::optional<std::string> lastStepTitle;

    static constexpr auto fields() {
      using R = Progress;
      return FieldList(field("currentStep", &R::currentStep), field("totalSteps", &R::totalSteps),
                       field("lastStepStatus", &R::lastStepStatus),
                       field("lastStepTitle", &R::lastStepTitle));
    }
  };

  /// What stands in the way of a request whose status is "blocked".
  struct BlockedInfo {
    std::string code;
    std::string message;
    std::optional<std::string> url;

    static constexpr auto fields() {
      using R = BlockedInfo;
      return FieldList(field("code", &R::code), field("message", &R::message),
                       field("url", &R::url));
    }
  };

  struct Step {
    /// 0-based position in the test.
    std::int64_t index = 0;
    std::string title;
    std::string description;
    std::string status;
    std::optional<std::string> failureReason;
    bool healedByAI = false;
    std::optional<double> durationSeconds;

    static constexpr auto fields() {
      using R = Step;
      return FieldList(field("index", &R::index), field("title", &R::title),
                       field("description", &R::description), field("status", &R::status),
                       // Older app versions wrote the reason under this other key.
                       field("failureReason", &R::failureReason).orElse("errorMessage"),
                       field("healedByAI", &R::healedByAI).withDefault(),
                       field("durationSeconds", &R::durationSeconds));
    }
  };

  /// Where the step captures of a run lie.
  struct TraceInfo {
    /// Absolute path of the capture session folder.
    std::string artifactsDir;
    std::optional<std::int64_t> failedStepIndex;
    std::optional<std::int64_t> lastStepIndex;

    static constexpr auto fields() {
      using R = TraceInfo;
      return FieldList(field("artifactsDir", &R::artifactsDir),
                       field("failedStepIndex", &R::failedStepIndex),
                       field("lastStepIndex", &R::lastStepIndex));
    }
  };

  struct Test {
    std::string testId;
    std::string testName;
    std::string status;
    double durationSeconds = 0;
    std::vector<Step> steps;
    std::optional<TraceInfo> trace;

    static constexpr auto fields() {
      using R = Test;
      return FieldList(field("testId", &R::testId), field("testName", &R::testName),
                       field("status", &R::status), field("durationSeconds", &R::durationSeconds),
                       field("steps", &R::steps), field("trace", &R::trace));
    }
  };

  struct Summary {
    std::int64_t tests = 0;
    std::int64_t testsPassed = 0;
    double durationSeconds = 0;

    static constexpr auto fields() {
      using R = Summary;
      return FieldList(field("tests", &R::tests), field("testsPassed", &R::testsPassed),
                       field("durationSeconds", &R::durationSeconds));
    }
  };

  struct AppIdentity {
    std::string bundleId;
    std::optional<std::string> version;
    std::optional<std::string> build;

    static constexpr auto fields() {
      using R = AppIdentity;
      return FieldList(field("bundleId", &R::bundleId), field("version", &R::version),
                       field("build", &R::build));
    }
  };

  struct AuthoredTestInfo {
    std::string testId;
    std::string testName;
    std::int64_t stepCount = 0;
    std::optional<double> completionPercent;

    static constexpr auto fields() {
      using R = AuthoredTestInfo;
      return FieldList(field("testId", &R::testId), field("testName", &R::testName),
                       field("stepCount", &R::stepCount),
                       field("completionPercent", &R::completionPercent));
    }
  };

  struct UdiInfo {
    std::string udiId;
    std::string name;
    std::int64_t stepCount = 0;
    std::optional<std::vector<std::string>> parameterNames;

    static constexpr auto fields() {
      using R = UdiInfo;
      return FieldList(field("udiId", &R::udiId), field("name", &R::name),
                       field("stepCount", &R::stepCount),
                       field("parameterNames", &R::parameterNames));
    }
  };

  std::int64_t schemaVersion = currentSchemaVersion;
  std::string requestId;
  std::string source;
  /// A Status raw value, kept as text so that a value this build does not know still decodes.
  std::string status;
  bool terminal = false;
  Date updatedAt;
  std::optional<std::string> projectName;
  std::optional<std::string> platform;
  std::optional<std::string> message;
  std::optional<Progress> progress;
  std::optional<std::int64_t> queuePosition;
  std::optional<BlockedInfo> blocked;
  std::optional<std::vector<ValidationIssue>> validationIssues;
  std::optional<std::vector<Test>> tests;
  std::optional<Summary> summary;
  std::optional<AppIdentity> appUnderTest;
  std::optional<double> creditsSpent;
  std::optional<double> creditBalance;
  std::optional<TraceInfo> trace;
  std::optional<AuthoredTestInfo> authoredTest;
  std::optional<std::vector<AuthoredTestInfo>> authoredTests;
  std::optional<UdiInfo> udi;

  static constexpr auto fields() {
    using R = AgentRunResult;
    return FieldList(field("schemaVersion", &R::schemaVersion), field("requestId", &R::requestId),
                     field("source", &R::source), field("status", &R::status),
                     field("terminal", &R::terminal), field("updatedAt", &R::updatedAt),
                     field("projectName", &R::projectName), field("platform", &R::platform),
                     field("message", &R::message), field("progress", &R::progress),
                     field("queuePosition", &R::queuePosition), field("blocked", &R::blocked),
                     field("validationIssues", &R::validationIssues), field("tests", &R::tests),
                     field("summary", &R::summary), field("appUnderTest", &R::appUnderTest),
                     field("creditsSpent", &R::creditsSpent),
                     field("creditBalance", &R::creditBalance), field("trace", &R::trace),
                     field("authoredTest", &R::authoredTest),
                     field("authoredTests", &R::authoredTests), field("udi", &R::udi));
  }

  /// Sets the status together with the `terminal` flag that belongs to it.
  void setStatus(Status value) {
    status = rawValue(value);
    terminal = isTerminal(value);
  }

  [[nodiscard]] static std::filesystem::path fileURL(std::string_view requestId,
                                                     const AgentPaths& in) {
    return in.agentResultsDirectory() / std::string(requestId).append(".json");
  }
  /// Throws EncodeError or FileError.
  void write(const AgentPaths& in) const { writeRecord(*this, fileURL(requestId, in)); }
  /// Throws FileError or DecodeError. Any schema version and any status text are accepted.
  [[nodiscard]] static AgentRunResult read(const std::filesystem::path& from) {
    return readRecord<AgentRunResult>(from);
  }
};

extern template struct RecordCodec<AgentRunResult>;

}  // namespace corvane
