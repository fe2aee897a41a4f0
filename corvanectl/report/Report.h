#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/json/Date.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "corvanectl/results/Outcome.h"

namespace corvane::ctl {

/// A finished request as its reports tell it, whatever kind of request it was. All texts are the
/// app's, as they came: each writer makes them safe for its form.
struct Report {
  struct Fact {
    std::string label;
    std::string value;
  };

  std::string requestId;
  /// The project; for want of one the kind of request.
  std::string title;
  std::string status;
  Outcome outcome = Outcome::other;
  /// When the result was last written.
  std::optional<Date> updatedAt;
  /// How many tests passed in what time; empty when none were run.
  std::string totals;
  /// Why the request ended as it did, and what it has made.
  std::vector<std::string> remarks;
  /// Where a person can remove what blocks the request.
  std::optional<std::string> url;
  /// What else is known: platform, app under test, credits and the like.
  std::vector<Fact> facts;
  std::vector<AgentRunResult::Test> tests;
  /// Of a run that carries no captures with its tests.
  std::optional<AgentRunResult::TraceInfo> trace;
};

/// The report on a request that has finished with `status`, from its result file's text. When the
/// text does not have the form of a result, it stands in a remark.
[[nodiscard]] Report makeReport(std::string_view requestId, std::string_view status,
                                std::string_view json);

/// What a step does: its kind and its description, "TAP: the button Pay".
[[nodiscard]] std::string nameOf(const AgentRunResult::Step& step);

/// The same with its number, and how it went: "step 4 failed: TAP: the button Pay".
[[nodiscard]] std::string headlineOf(const AgentRunResult::Step& step);

}  // namespace corvane::ctl
