#include "CorvaneCore/results/AnswerTexts.h"

#include <array>

#include "CorvaneCore/text/Unicode.h"
#include "CorvaneCore/text/Uuid.h"

namespace corvane {

namespace {

using AnswerTexts::Standing;

constexpr std::string_view statusLabel = "status: ";
constexpr std::string_view requestIdLabel = "requestId:";

/// What is remarked on a status. The age of a stale result stands between the two texts.
struct Remark {
  Standing standing;
  std::string_view text;
  std::string_view behindSeconds;
};

constexpr std::array remarks{
    Remark{Standing::terminal, " (terminal)", ""},
    Remark{Standing::pending, " (Corvane has not picked up the request yet)", ""},
    Remark{Standing::inProgress, " (NOT terminal — run still in progress, call get_result again)",
           ""},
    Remark{Standing::stale, " (NOT terminal — STALE: no update in ",
           "s despite Corvane running; active envelopes heartbeat every ~20s. The run may be "
           "wedged — consider cancel_run, or get_status for the live picture.)"},
    Remark{Standing::appNotRunning, " (NOT terminal — but Corvane.app is NOT running)", ""},
};

/// Where the remark on a status begins in `headline`; npos when it ends with another one.
std::size_t findRemark(std::string_view headline, const Remark& remark) {
  if (!headline.ends_with(remark.behindSeconds)) return std::string_view::npos;
  headline.remove_suffix(remark.behindSeconds.size());
  const std::size_t begin = headline.rfind(remark.text);
  if (begin == std::string_view::npos) return begin;
  const auto seconds = headline.substr(begin + remark.text.size());
  const bool fits = remark.behindSeconds.empty()
                        ? seconds.empty()
                        : seconds.find_first_not_of("0123456789") == std::string_view::npos;
  return fits ? begin : std::string_view::npos;
}

}  // namespace

std::string AnswerTexts::statusLine(std::string_view status, Standing standing,
                                    std::int64_t secondsSinceUpdate) {
  const Remark& remark = remarks[static_cast<std::size_t>(standing)];
  std::string line(statusLabel);
  line.append(status).append(remark.text);
  if (!remark.behindSeconds.empty()) {
    line.append(std::to_string(secondsSinceUpdate)).append(remark.behindSeconds);
  }
  return line;
}

std::optional<AnswerTexts::ResultAnswer> AnswerTexts::readResultAnswer(std::string_view answer) {
  if (!answer.starts_with(statusLabel)) return std::nullopt;
  const std::string_view headline =
      answer.substr(statusLabel.size(), answer.find('\n') - statusLabel.size());
  ResultAnswer read;
  read.headline = headline;
  read.status = headline.substr(0, headline.find(" ("));
  for (const Remark& remark : remarks) {
    const std::size_t begin = findRemark(headline, remark);
    if (begin == std::string_view::npos) continue;
    read.standing = remark.standing;
    read.status = headline.substr(0, begin);
  }
  const std::size_t gap = answer.find(beforeResult);
  if (read.isTerminal() && gap != std::string_view::npos) {
    read.result = answer.substr(gap + beforeResult.size());
  }
  return read;
}

std::string AnswerTexts::requestIdLine(std::string_view requestId, std::size_t column) {
  std::string line(requestIdLabel);
  line.resize(column, ' ');
  return line.append(requestId);
}

std::optional<std::string> AnswerTexts::readRequestId(std::string_view answer) {
  const std::size_t begin = answer.find(requestIdLabel);
  if (begin == std::string_view::npos) return std::nullopt;
  const std::string_view rest = answer.substr(begin + requestIdLabel.size());
  return parseRequestId(trimWhitespace(rest.substr(0, rest.find('\n'))));
}

}  // namespace corvane
