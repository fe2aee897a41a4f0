#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "CorvaneCore/results/AgentRunResult.h"

namespace corvane::ctl {

/// How a request, a test or a step went. Their statuses are the app's own words; `other` is one
/// that says neither that all went well nor that it failed.
enum class Outcome { passed, healed, failed, skipped, other };

/// A test is healed when it passed with a step that was.
[[nodiscard]] Outcome outcomeOf(const AgentRunResult::Test& test);
/// Healing that did not save a step does not hide that it failed.
[[nodiscard]] Outcome outcomeOf(const AgentRunResult::Step& step);
/// Of a request that has finished with this status.
[[nodiscard]] Outcome outcomeOf(std::string_view status);

/// The word for how a step went: its status, or "healed".
[[nodiscard]] std::string_view statusWord(const AgentRunResult::Step& step);

/// Whether somebody should look at the step: it did not simply pass, and it was carried out.
[[nodiscard]] bool isNotable(const AgentRunResult::Step& step);

/// How many steps of a test went this way.
[[nodiscard]] std::int64_t countSteps(const AgentRunResult::Test& test, Outcome outcome);

}  // namespace corvane::ctl
