#pragma once

#include <string>
#include <string_view>

#include "CorvaneCore/results/AgentRunResult.h"
#include "corvanectl/follow/FollowEvents.h"
#include "corvanectl/terminal/Style.h"

/// What a person is told of a followed request. Everything is one line that is safe to show,
/// without a line feed.
namespace corvane::ctl::FollowWords {

/// "passed", "queued — position 2", "building — Building the app".
[[nodiscard]] std::string status(const events::StatusChanged& status);

[[nodiscard]] std::string name(const TestPlace& test);

/// "(2/6)", counted from 1.
[[nodiscard]] std::string place(const TestPlace& test);

/// "Sign in (2/6)".
[[nodiscard]] std::string test(const TestPlace& test);

/// "step 3/7 Tap the button". Steps are counted from 0.
[[nodiscard]] std::string step(const events::StepStarted& step);

/// A finished test with a mark, its time, and what there is to know of it: why it failed, where it
/// was healed.
[[nodiscard]] std::string finishedTest(const AgentRunResult::Test& test, const Style& style);

/// What is wrong and what a person can do, or that all is well again.
[[nodiscard]] std::string health(Health health, std::string_view requestId);

/// Why following is given up after `seconds` of that.
[[nodiscard]] std::string givenUp(Health health, double seconds);

/// What becomes of a request that is left.
[[nodiscard]] std::string whatBecomesOfIt(Health health, bool isPending);

/// What is wrong, in place of what the tool says about it to an agent.
[[nodiscard]] std::string refusal(std::string_view answer, std::string_view requestId);

/// How a person goes on with a request that is left.
[[nodiscard]] std::string waysOn(std::string_view requestId);

}  // namespace corvane::ctl::FollowWords
