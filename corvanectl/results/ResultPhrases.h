#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "CorvaneCore/results/AgentRunResult.h"

/// The parts of a result in words for people. Each is one line that is safe to show.
namespace corvane::ctl {

/// "1 step", "2 steps".
[[nodiscard]] std::string counted(std::int64_t count, std::string_view noun);

/// "com.shop 1.2 build 45".
[[nodiscard]] std::string describe(const AgentRunResult::AppIdentity& app);

/// "error missingTests at tests: empty".
[[nodiscard]] std::string describe(const ValidationIssue& issue);

/// "1 of 2 tests passed in 1 min 15 s".
[[nodiscard]] std::string describe(const AgentRunResult::Summary& summary);

/// How large an authored test is: "5 steps, 80% complete".
[[nodiscard]] std::string sizeOf(const AgentRunResult::AuthoredTestInfo& test);

/// How large a building block is: "2 steps; parameters user password".
[[nodiscard]] std::string sizeOf(const AgentRunResult::UdiInfo& udi);

/// "1.5 spent, 20 left", as far as it is known; empty when nothing is.
[[nodiscard]] std::string creditsOf(const AgentRunResult& result);

}  // namespace corvane::ctl
