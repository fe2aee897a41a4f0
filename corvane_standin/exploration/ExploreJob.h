#pragma once

#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/requests/Requests.h"
#include "corvane_standin/exploration/ExplorePlan.h"
#include "corvane_standin/jobs/Job.h"
#include "corvane_standin/jobs/Services.h"
#include "corvane_standin/program/Stopwatch.h"

namespace corvane::standin {

/// Authors one test per goal, step by step, each filed as soon as it is whole. What was authored is
/// kept however the session ends.
class ExploreJob final : public Job {
 public:
  ExploreJob(AgentExploreRequest request, const Services& services);

  [[nodiscard]] Advance advance() override;
  [[nodiscard]] bool isAuthoring() const override { return stage == Stage::authoring; }
  void end(RunStatus status, std::string message) override;

 private:
  enum class Stage { waiting, building, authoring };

  void begin();
  void build();
  void startAuthoring();
  /// Ends the step in hand and takes the next one in hand, if the credits allow it.
  void toNextStep();
  /// Whether the session may spend what the next step costs; ends it otherwise.
  [[nodiscard]] bool canAffordStep();
  void showActivity();
  void file(AgentContext::TestContext test, std::optional<double> completionPercent);
  /// Files the test in hand as far as it goes.
  void keepPartialTest();
  [[nodiscard]] std::string keptTests() const;

  AgentExploreRequest request;
  Services services;
  Stopwatch stopwatch;
  Stage stage = Stage::waiting;
  std::optional<ExplorePlan> plan;
  /// The step in hand, of the goal in hand.
  std::size_t goal = 0;
  std::size_t step = 0;
  double creditsSpent = 0;
  std::vector<AgentRunResult::AuthoredTestInfo> authored;
};

}  // namespace corvane::standin
