#pragma once

#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/commands/Session.h"

namespace corvane::ctl {

/// What an answer of get_result says of a request.
struct RequestAnswer {
  std::string status;
  /// Nothing when the server says it in words that this program does not know.
  std::optional<AnswerTexts::Standing> standing;
  /// The result file's text; empty while nobody has picked the request up.
  std::string json;
  /// The same as a record; nothing when it has not the form of one.
  std::optional<AgentRunResult> result;
  /// What follows the text, pictures and remarks.
  std::vector<ToolResult::Block> further;

  [[nodiscard]] bool hasEnded() const { return standing == AnswerTexts::Standing::terminal; }
};

/// Which pictures to ask for: those of a step, of the run's most telling test and step unless
/// named.
struct PictureChoice {
  std::optional<std::int64_t> test;
  std::optional<std::int64_t> step;
};

/// Asks how the request stands, without waiting for it. Throws ToolRefusal when the server knows no
/// such request, and what Session::callTool throws.
[[nodiscard]] RequestAnswer askRequest(Session& session, const std::string& id,
                                       const std::optional<PictureChoice>& pictures = {});

}  // namespace corvane::ctl
