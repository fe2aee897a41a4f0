#pragma once

#include <optional>
#include <string_view>

#include "corvane_standin/jobs/Job.h"
#include "corvane_standin/program/Environment.h"

namespace corvane::standin {

/// A request that nothing is done for: it turns out as its outcome has it.
class ScriptedJob final : public Job {
 public:
  /// What requests of one sort look like from outside.
  struct Sort {
    std::string_view source;
    std::string_view kind;
    /// While their turn lasts.
    RunStatus inHand;
    /// When they fail.
    RunStatus failure;
  };

  struct Request {
    std::string_view id;
    /// May be empty.
    std::string_view projectName;
    Sort sort;
  };

  ScriptedJob(const Request& request, RequestOutcome outcome, const Services& services);

  [[nodiscard]] bool heartbeats() const override;
  [[nodiscard]] bool isAuthoring() const override;
  [[nodiscard]] Advance advance() override;

 private:
  [[nodiscard]] Advance turnOut();
  void fail();

  Sort sort;
  RequestOutcome outcome;
  Services services;
  /// Since its turn came.
  std::optional<Stopwatch> turn;
};

}  // namespace corvane::standin
