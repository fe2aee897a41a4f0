#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the server's answers say about dispatched requests, in the words that its clients read:
/// worded for the server and read for clients in this one place.
namespace corvane::AnswerTexts {

/// The longest that one get_result call waits for a request, in seconds.
inline constexpr std::int64_t longestWaitSeconds = 240;

/// How a request stands, beside its status.
enum class Standing { terminal, pending, inProgress, stale, appNotRunning };

/// The line that get_result's answer begins with, without its line feed. `secondsSinceUpdate` is
/// told of a stale request only.
[[nodiscard]] std::string statusLine(std::string_view status, Standing standing,
                                     std::int64_t secondsSinceUpdate = 0);

/// What stands between the head of get_result's answer and the result file's text.
inline constexpr std::string_view beforeResult = "\n\n";

/// What the head of get_result's answer ends with when the app that had the request is gone.
inline constexpr std::string_view runDiedNote =
    "\n\nThis run died with the app; it will not progress. run_test/create_test relaunch "
    "Corvane (which settles orphaned runs as 'error' at startup).";

/// What an answer of get_result says.
struct ResultAnswer {
  std::string status;
  /// Nothing when the remark on the status is one that this version does not know.
  std::optional<Standing> standing;
  /// The status together with the remark on it.
  std::string headline;
  /// The result file's text; empty while nobody has picked the request up.
  std::string_view result;

  [[nodiscard]] bool isTerminal() const { return standing == Standing::terminal; }
};

/// Reads an answer of get_result; nothing when it does not begin with a status line. What is
/// returned refers to `answer`.
[[nodiscard]] std::optional<ResultAnswer> readResultAnswer(std::string_view answer);

/// What the error begins with that get_result answers when nobody knows the request.
inline constexpr std::string_view unknownRequestCode = "error:unknown_request_id";

/// The line about the request id in the answer of a dispatching tool, without its line feed:
/// "requestId:" and the id, which begins `column` characters behind the label's beginning.
[[nodiscard]] std::string requestIdLine(std::string_view requestId, std::size_t column);

/// The request id that the answer of a dispatching tool names, if it does.
[[nodiscard]] std::optional<std::string> readRequestId(std::string_view answer);

/// What stands behind the app's path in such an answer when the app neither runs nor could be
/// launched.
inline constexpr std::string_view launchFailedRemark = "  (LAUNCH FAILED — open Corvane manually)";

/// What such an answer ends with: how an agent goes on. The call that it makes follows.
inline constexpr std::string_view beforeNextCall = "\n\nNext: call ";

/// The answer of a dispatching tool without what it tells an agent to do next.
[[nodiscard]] std::string_view withoutNextCall(std::string_view answer);

/// Whether the answer of run_test says that the app neither runs nor could be launched.
[[nodiscard]] bool readLaunchFailed(std::string_view answer);

/// What cancel_run's answer ends with: how an agent learns what came of it, of a request that was
/// cancelled there and then, and of one that the app is to cancel.
inline constexpr std::string_view cancelledNote = " get_result now reports status \"cancelled\".";
inline constexpr std::string_view cancellingNote =
    " Poll get_result until it reports status \"cancelled\" (or a terminal result, if the run "
    "finished before the cancellation landed).";

/// The line that get_status's answer begins with, without its line feed.
[[nodiscard]] std::string appStateLine(bool appRunning);

/// Whether the app runs, as an answer of get_status says; nothing when it is no such answer.
[[nodiscard]] std::optional<bool> readAppState(std::string_view answer);

/// The JSON of one line that an answer of get_status or describe_project ends with.
[[nodiscard]] std::string_view snapshotIn(std::string_view answer);

/// The caption of a step's pictures. `moments` are the words for the moments that they show, joined
/// with ", ".
[[nodiscard]] std::string stepCaption(std::int64_t step, std::string_view moments);

/// What the caption of a step's pictures says.
struct StepCaption {
  std::int64_t step = 0;
  /// One for each picture that follows.
  std::vector<std::string> moments;
};

/// Reads such a caption; nothing when the text is none.
[[nodiscard]] std::optional<StepCaption> readStepCaption(std::string_view text);

}  // namespace corvane::AnswerTexts
