#pragma once

#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane {

/// A snapshot of the user's workspace. Corvane.app writes it on launch and whenever projects, tests
/// or devices change; the server only reads it.
struct AgentContext {
  static constexpr std::int64_t currentSchemaVersion = 1;

  struct SuiteContext {
    std::string name;
    /// Ids of the member tests, in suite order.
    std::vector<std::string> testIds;

    static constexpr auto fields() {
      using R = SuiteContext;
      return FieldList(field("name", &R::name), field("testIds", &R::testIds));
    }
  };

  /// The first failed step of the most recent failed run.
  struct LastFailure {
    std::string stepTitle;
    std::optional<std::string> errorMessage;

    static constexpr auto fields() {
      using R = LastFailure;
      return FieldList(field("stepTitle", &R::stepTitle), field("errorMessage", &R::errorMessage));
    }
  };

  struct StepSummary {
    std::string type;
    std::string description;
    /// Branch membership of a child step.
    std::optional<std::string> previousStepCondition;
    std::optional<std::vector<StepSummary>> children;

    static constexpr auto fields() {
      using R = StepSummary;
      return FieldList(field("type", &R::type), field("description", &R::description),
                       field("previousStepCondition", &R::previousStepCondition),
                       field("children", &R::children));
    }
  };

  struct TestContext {
    std::string id;
    std::string name;
    std::optional<std::string> description;
    std::optional<std::vector<std::string>> parameterNames;
    /// The persisted steps; the position here is the step index that step ranges refer to.
    std::vector<StepSummary> steps;
    /// Whether the app's lifecycle steps are injected at run time rather than persisted.
    std::optional<bool> autoScaffold;
    /// 0 (stable) to 1 (alternates every run); absent when never run, like the three below.
    std::optional<double> flakinessScore;
    std::optional<bool> isFlaky;
    std::optional<LastFailure> lastFailure;
    /// Whether a fully passed run postdates the test's last edit.
    std::optional<bool> verified;

    static constexpr auto fields() {
      using R = TestContext;
      return FieldList(field("id", &R::id), field("name", &R::name),
                       field("description", &R::description),
                       field("parameterNames", &R::parameterNames), field("steps", &R::steps),
                       field("autoScaffold", &R::autoScaffold),
                       field("flakinessScore", &R::flakinessScore), field("isFlaky", &R::isFlaky),
                       field("lastFailure", &R::lastFailure), field("verified", &R::verified));
    }
  };

  struct ProjectContext {
    std::string name;
    std::optional<std::string> platform;
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> applicationId;
    std::optional<bool> buildBeforeScheduledRuns;
    std::optional<bool> iosBuildConfigured;
    std::optional<bool> androidBuildConfigured;
    std::vector<SuiteContext> suites;
    std::vector<TestContext> tests;
    /// The charted screens, the actions tried on them and where they led, as the app renders it.
    std::optional<std::string> worldMap;

    static constexpr auto fields() {
      using R = ProjectContext;
      return FieldList(field("name", &R::name), field("platform", &R::platform),
                       field("bundleIdentifier", &R::bundleIdentifier),
                       field("applicationId", &R::applicationId),
                       field("buildBeforeScheduledRuns", &R::buildBeforeScheduledRuns),
                       field("iosBuildConfigured", &R::iosBuildConfigured),
                       field("androidBuildConfigured", &R::androidBuildConfigured),
                       field("suites", &R::suites), field("tests", &R::tests),
                       field("worldMap", &R::worldMap));
    }
  };

  struct DeviceContext {
    std::string platform;
    std::string name;
    std::optional<std::string> udid;
    std::string state;
    bool connected = false;

    static constexpr auto fields() {
      using R = DeviceContext;
      return FieldList(field("platform", &R::platform), field("name", &R::name),
                       field("udid", &R::udid), field("state", &R::state),
                       field("connected", &R::connected));
    }
  };

  /// One user-defined interaction of the library, which all projects share.
  struct UdiContext {
    std::string id;
    std::string name;
    std::optional<std::vector<std::string>> parameterNames;
    std::vector<StepSummary> steps;
    std::optional<std::string> sourceProjectName;

    static constexpr auto fields() {
      using R = UdiContext;
      return FieldList(field("id", &R::id), field("name", &R::name),
                       field("parameterNames", &R::parameterNames), field("steps", &R::steps),
                       field("sourceProjectName", &R::sourceProjectName));
    }
  };

  std::int64_t schemaVersion = currentSchemaVersion;
  Date updatedAt;
  std::optional<std::string> appVersion;
  std::optional<std::string> currentProjectName;
  std::vector<ProjectContext> projects;
  std::optional<DeviceContext> device;
  std::optional<std::vector<UdiContext>> userDefinedInteractions;

  static constexpr auto fields() {
    using R = AgentContext;
    return FieldList(field("schemaVersion", &R::schemaVersion), field("updatedAt", &R::updatedAt),
                     field("appVersion", &R::appVersion),
                     field("currentProjectName", &R::currentProjectName),
                     field("projects", &R::projects), field("device", &R::device),
                     field("userDefinedInteractions", &R::userDefinedInteractions));
  }

  /// Throws EncodeError or FileError.
  void write(const AgentPaths& in) const { writeRecord(*this, in.agentContextFile()); }
  /// Throws FileError or DecodeError.
  [[nodiscard]] static AgentContext read(const std::filesystem::path& from) {
    return readRecord<AgentContext>(from);
  }
};

extern template struct RecordCodec<AgentContext>;

}  // namespace corvane
