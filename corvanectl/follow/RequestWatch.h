#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/follow/FollowEvents.h"
#include "corvanectl/system/Interruption.h"

namespace corvane::ctl {

/// What one answer says about a request.
struct RequestLook {
  std::string status;
  /// Nothing when it is one that this version does not know.
  std::optional<AnswerTexts::Standing> standing;
  /// The result file's text; empty while nobody has picked the request up.
  std::string json;
  /// The same as a record, when it has the form of one.
  std::optional<AgentRunResult> result;
  /// The tool's own error, in place of all this.
  std::optional<std::string> refusal;

  /// How many blocks the answer has.
  std::size_t blockCount = 1;

  /// Reads the text of get_result's answer. Throws ProtocolError when it begins with no status.
  [[nodiscard]] static RequestLook from(std::string_view answer, bool isError);

  [[nodiscard]] bool isOver() const { return standing == AnswerTexts::Standing::terminal; }
};

/// What a follower learns things from. Its operations throw what a command's do.
class RequestWatch {
 public:
  RequestWatch() = default;
  RequestWatch(const RequestWatch&) = delete;
  RequestWatch& operator=(const RequestWatch&) = delete;
  virtual ~RequestWatch() = default;

  /// Looks at the request, as soon as it is over or after `wait`.
  [[nodiscard]] virtual RequestLook look(Seconds wait) = 0;
  /// What is known of the run beforehand; nothing when that is not known, or not yet.
  [[nodiscard]] virtual std::optional<Expectation> expectation() = 0;
  /// Whether Corvane.app runs.
  [[nodiscard]] virtual bool appIsRunning() = 0;
  [[nodiscard]] virtual FollowTime now() = 0;
  /// Lets time pass.
  virtual void pauseUntil(FollowTime moment) = 0;
};

}  // namespace corvane::ctl
