#include "corvanectl/results/ResultAnswer.h"

#include "CorvaneCore/results/AgentRunResult.h"
#include "corvanectl/protocol/ProtocolError.h"

namespace corvane {

ResultAnswer ResultAnswer::parse(std::string_view text) {
  constexpr std::string_view label = "status: ";
  constexpr std::string_view terminalMark = " (terminal)";
  constexpr std::string_view healthyMark = " (NOT terminal — run still in progress";
  if (!text.starts_with(label)) {
    throw ProtocolError("the answer of get_result does not begin with a status");
  }
  const std::string_view headline = text.substr(label.size(), text.find('\n') - label.size());
  ResultAnswer answer;
  answer.headline = headline;
  answer.status = headline.substr(0, headline.find(" ("));
  answer.terminal = headline.ends_with(terminalMark);
  answer.healthy = headline.find(healthyMark) != std::string_view::npos;
  if (const auto gap = text.find("\n\n"); answer.terminal && gap != std::string_view::npos) {
    answer.json = text.substr(gap + 2);
  }
  return answer;
}

ExitStatus ResultAnswer::exitStatus() const {
  switch (fromRawValue<RunStatus>(status).value_or(RunStatus::error)) {
    case RunStatus::passed:
    case RunStatus::imported:
    case RunStatus::authored:
    case RunStatus::extracted:
    case RunStatus::deleted:
      return ExitStatus::success;
    case RunStatus::failed:
    case RunStatus::buildFailed:
    case RunStatus::importFailed:
      return ExitStatus::failure;
    default:
      return ExitStatus::otherOutcome;
  }
}

}  // namespace corvane
