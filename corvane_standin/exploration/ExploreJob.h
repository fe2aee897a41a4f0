#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/jobs/Job.h"
#include "corvane_standin/program/Environment.h"

namespace corvane::standin {

/// One bounded goal out of the text that an agent sent.
struct Goal {
  /// What the goal is called: its label, else its first words.
  std::string name;
  /// What is to be done and seen, in the agent's words, in their order.
  std::vector<std::string> clauses;
};

/// The goals of a text: one per line that is neither empty nor a heading over others. Numbers and
/// bullets at the start of a line do not count. Never empty for a text that is not blank.
[[nodiscard]] std::vector<Goal> parseGoals(std::string_view text);

/// The steps that an exploration finds on its way to a goal: one per clause, its type told from the
/// clause's first word, and at the end always a look at the state that the goal asks for.
[[nodiscard]] std::vector<AgentContext::StepSummary> stepsToward(const Goal& goal);

/// Everything that an exploration is going to find.
struct ExplorePlan {
  std::string platform;
  AgentRunResult::AppIdentity app;
  bool builds = false;
  /// The tests to author, one per goal, with all their steps.
  std::vector<AgentContext::TestContext> tests;

  [[nodiscard]] std::size_t stepCount() const;
};

/// Whether the project has yet to be made for the request. Throws RequestRefused, as blocked, when
/// it has to but the identity of its app is missing.
[[nodiscard]] bool needsProject(const AgentExploreRequest& request, const AgentContext& workspace);

/// The plan of a request whose project exists. Throws RequestRefused.
[[nodiscard]] ExplorePlan planExploration(const AgentExploreRequest& request,
                                          const AgentContext& workspace);

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
