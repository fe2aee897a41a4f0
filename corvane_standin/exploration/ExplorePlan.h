#pragma once

#include <string>
#include <vector>

#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"

namespace corvane::standin {

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

}  // namespace corvane::standin
