#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "bench/speed/Finding.h"
#include "bench/speed/Setting.h"

namespace corvane::testing {

/// The rows of the table. Each measures its contenders in turn, round by round.
namespace Rows {

using Findings = std::vector<Finding>;

/// From the start of the process to the reply to `initialize`.
[[nodiscard]] Findings coldStart(const Setting& setting);
/// One ping after the other.
[[nodiscard]] Findings ping(const Setting& setting);
/// Pings sent without waiting for replies, and what the server's memory does meanwhile.
[[nodiscard]] Findings pipelinedPings(const Setting& setting);
/// One call of a trivial tool after the other.
[[nodiscard]] Findings healthCall(const Setting& setting);
/// The most memory a process ever held that has been through all of the above.
[[nodiscard]] Findings peakMemory(const Setting& setting);
/// A large workspace described.
[[nodiscard]] Findings describeProject(const Setting& setting);
/// A large result reported.
[[nodiscard]] Findings getResult(const Setting& setting);
/// A large test validated and written.
[[nodiscard]] Findings createTest(const Setting& setting);
/// Calls that look through folders of up to a hundred thousand entries: how they compare, how they
/// grow, and the memory they take.
[[nodiscard]] Findings folders(const Setting& setting);
/// A run dispatched beside two thousand processes, any of which could be the app.
[[nodiscard]] Findings processes(const Setting& setting);
/// Many calls that wait for a result.
[[nodiscard]] Findings waitingCalls(const Setting& setting);

struct Row {
  std::string_view name;
  Findings (*measure)(const Setting&);
};

inline constexpr std::array all{
    Row{"cold-start", coldStart},     Row{"ping", ping},
    Row{"pipelined", pipelinedPings}, Row{"health", healthCall},
    Row{"peak-memory", peakMemory},   Row{"describe-project", describeProject},
    Row{"get-result", getResult},     Row{"create-test", createTest},
    Row{"folders", folders},          Row{"processes", processes},
    Row{"waiting", waitingCalls},
};

}  // namespace Rows

}  // namespace corvane::testing
