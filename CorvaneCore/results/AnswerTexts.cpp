#include "CorvaneCore/results/AnswerTexts.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "CorvaneCore/text/Unicode.h"
#include "CorvaneCore/text/Uuid.h"

namespace corvane {

namespace {

using AnswerTexts::Standing;

constexpr std::string_view statusLabel = "status: ";
constexpr std::string_view requestIdLabel = "requestId:";
constexpr std::string_view appRunningHead = "Corvane status (appRunning: true).";
constexpr std::string_view appMissingHead = "Corvane status (appRunning: false).";
constexpr std::string_view captionLead = "step ";
constexpr std::string_view captionMoments = " screenshots (";
constexpr std::string_view betweenMoments = ", ";
constexpr std::string_view captionNote =
    ") — corner brackets mark where Corvane touched (drags also draw a line to the end point)";

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
  if (read.standing == Standing::pending) return read;
  answer.remove_prefix(std::min(answer.find(beforeResult), answer.size()));
  if (answer.starts_with(runDiedNote)) answer.remove_prefix(runDiedNote.size());
  if (answer.starts_with(beforeResult)) read.result = answer.substr(beforeResult.size());
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

std::string_view AnswerTexts::withoutNextCall(std::string_view answer) {
  return answer.substr(0, answer.rfind(beforeNextCall));
}

bool AnswerTexts::readLaunchFailed(std::string_view answer) {
  return withoutNextCall(answer).ends_with(launchFailedRemark);
}

std::string AnswerTexts::appStateLine(bool appRunning) {
  return std::string(appRunning ? appRunningHead : appMissingHead);
}

std::optional<bool> AnswerTexts::readAppState(std::string_view answer) {
  const std::string_view line = answer.substr(0, answer.find('\n'));
  if (line != appRunningHead && line != appMissingHead) return std::nullopt;
  return line == appRunningHead;
}

std::string_view AnswerTexts::snapshotIn(std::string_view answer) {
  return answer.substr(answer.rfind('\n') + 1);
}

std::string AnswerTexts::stepCaption(std::int64_t step, std::string_view moments) {
  std::string caption(captionLead);
  return caption.append(std::to_string(step))
      .append(captionMoments)
      .append(moments)
      .append(captionNote);
}

std::optional<AnswerTexts::StepCaption> AnswerTexts::readStepCaption(std::string_view text) {
  const std::size_t middle = text.find(captionMoments);
  if (!text.starts_with(captionLead) || !text.ends_with(captionNote) ||
      middle == std::string_view::npos) {
    return std::nullopt;
  }
  StepCaption caption;
  const std::string_view number = text.substr(captionLead.size(), middle - captionLead.size());
  const auto [end, error] = std::from_chars(number.begin(), number.end(), caption.step);
  if (error != std::errc() || end != number.end()) return std::nullopt;
  text.remove_prefix(middle + captionMoments.size());
  text.remove_suffix(captionNote.size());
  while (!text.empty()) {
    const std::string_view moment = text.substr(0, text.find(betweenMoments));
    caption.moments.emplace_back(moment);
    text.remove_prefix(std::min(moment.size() + betweenMoments.size(), text.size()));
  }
  return caption;
}

}  // namespace corvane
