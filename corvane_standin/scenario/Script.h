#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/Settings.h"

namespace corvane::standin {

/// How tests and requests turn out, as the settings have it, and how often they have by now. Tests
/// of the first workspace that the settings say nothing of have outcomes of their own.
class Script {
 public:
  explicit Script(StandInSettings given);

  /// How the test turns out in the run that is planned now, which counts for `times`.
  [[nodiscard]] TestOutcome outcomeOf(const std::string& test);
  /// How the request turns out that is taken up now, which counts for `times`.
  [[nodiscard]] RequestOutcome outcomeOf(const AgentTestSchema& payload);
  [[nodiscard]] RequestOutcome outcomeOf(const AgentExploreRequest& request);
  [[nodiscard]] RequestOutcome outcomeOf(const AgentLibraryRequest& request);

  /// How long the request stays in its drop folder. Of a run that is the longest of its tests'.
  [[nodiscard]] double pickUpSeconds(const AgentRunRequest& request,
                                     const AgentContext& workspace) const;
  [[nodiscard]] double pickUpSeconds(const AgentTestSchema& payload) const;
  [[nodiscard]] double pickUpSeconds(const AgentExploreRequest& request) const;
  [[nodiscard]] double pickUpSeconds(const AgentLibraryRequest& request) const;

 private:
  template <class Outcome>
  [[nodiscard]] Outcome counted(std::string_view sort, const std::string& name,
                                const Outcome* outcome);
  [[nodiscard]] double pickUpSeconds(const RequestOutcome* outcome) const;

  StandInSettings settings;
  /// By sort and name.
  std::map<std::pair<std::string_view, std::string>, std::int64_t> turns;
};

}  // namespace corvane::standin
