#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/text/Unicode.h"
#include "CorvaneCore/text/Uuid.h"
#include "corvane_standin/StandIn.h"
#include "corvane_standin/program/Environment.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

using namespace standin;

/// A clock that a test moves.
class ManualClock final : public Clock {
 public:
  [[nodiscard]] Time now() const override { return Time(elapsed); }
  [[nodiscard]] Date date() const override {
    const Date start = std::chrono::sys_days(std::chrono::year(2026) / 3 / 1);
    return start + std::chrono::floor<std::chrono::seconds>(elapsed);
  }

  void advance(Duration time) { elapsed += time; }

 private:
  Duration elapsed{};
};

/// A stand-in in a home of its own, whose time passes only when a test lets it.
class StandInFixture : public ::testing::Test {
 protected:
  StandInFixture() {
    ensureDirectoryExists(StandInPaths(paths).directory());
    settings.coldStartSeconds = 0;
    settings.captures = false;
  }

  /// Begins a life of the stand-in with the settings as they are now; an earlier one ends as if its
  /// process had died.
  void start() {
    log.emplace(StandInPaths(paths).logFile(), clock);
    standIn.emplace(paths, settings, clock, *log);
    EXPECT_TRUE(standIn->tick());
  }

  /// Takes effect with the next start.
  TestOutcome& setOutcome(const std::string& test, TestOutcome::Kind kind) {
    auto& outcome = settings.outcomes[test];
    outcome.kind = kind;
    return outcome;
  }

  /// Lets time pass, tick by tick.
  void pass(Clock::Duration time) {
    for (const auto end = clock.now() + time; clock.now() < end;) {
      clock.advance(std::chrono::milliseconds(100));
      ASSERT_TRUE(standIn->tick());
    }
  }

  /// A request that is ready to be written: the given tests of the first project, without a build.
  [[nodiscard]] AgentRunRequest request(std::vector<std::string> testNames) const {
    AgentRunRequest request;
    request.requestId = makeRequestId();
    request.projectName = "Corner Shop";
    request.target.choice = AgentRunRequest::Target::TestsByName{std::move(testNames)};
    request.buildFirst = false;
    request.createdAt = clock.date();
    return request;
  }

  /// Drops a request and returns its id.
  template <class Request>
  std::string drop(const Request& request) const {
    request.write(paths);
    return request.requestId;
  }
  std::string drop(std::vector<std::string> testNames) const {
    return drop(request(std::move(testNames)));
  }

  void dropCancelMarker(const std::string& id) const {
    CancelMarker{.requestId = id, .createdAt = clock.date()}.write(paths);
  }

  [[nodiscard]] AgentRunResult result(const std::string& id) const {
    return AgentRunResult::read(AgentRunResult::fileURL(id, paths));
  }
  [[nodiscard]] std::string status(const std::string& id) const { return result(id).status; }

  /// Ticks until the request's result is terminal and returns every version of it that came by.
  [[nodiscard]] std::vector<AgentRunResult> follow(const std::string& id) {
    std::vector<AgentRunResult> versions;
    std::optional<FileStamp> last;
    for (int tick = 0; tick < 10'000; ++tick) {
      clock.advance(std::chrono::milliseconds(100));
      EXPECT_TRUE(standIn->tick());
      const auto stamp = readStamp(AgentRunResult::fileURL(id, paths));
      if (!stamp || stamp == last) continue;
      last = stamp;
      versions.push_back(result(id));
      if (versions.back().terminal) return versions;
    }
    ADD_FAILURE() << "the request " << id << " does not end";
    return versions;
  }

  [[nodiscard]] AgentRunResult finalResult(const std::string& id) { return follow(id).back(); }

  [[nodiscard]] AgentContext published() const {
    return AgentContext::read(paths.agentContextFile());
  }

  [[nodiscard]] AgentContext::ProjectContext publishedProject(const std::string& name) const {
    for (auto& project : published().projects) {
      if (project.name == name) return project;
    }
    ADD_FAILURE() << "no project " << name << " is published";
    return {};
  }

  [[nodiscard]] AgentContext::TestContext publishedTest(const std::string& name) const {
    for (const auto& project : published().projects) {
      for (const auto& test : project.tests) {
        if (test.name == name) return test;
      }
    }
    ADD_FAILURE() << "no test " << name << " is published";
    return {};
  }

  /// "type: description" of every step.
  [[nodiscard]] static std::vector<std::string> stepLines(
      const std::vector<AgentContext::StepSummary>& steps) {
    std::vector<std::string> lines;
    for (const auto& step : steps) lines.push_back(step.type + ": " + step.description);
    return lines;
  }

  const TemporaryHome home;
  const AgentPaths paths = home.paths();
  ManualClock clock;
  StandInSettings settings;
  std::optional<StandInLog> log;
  std::optional<StandIn> standIn;
};

}  // namespace corvane::testing
