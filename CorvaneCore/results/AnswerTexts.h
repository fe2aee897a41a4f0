#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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

/// What an answer of get_result says.
struct ResultAnswer {
  std::string status;
  /// Nothing when the remark on the status is one that this version does not know.
  std::optional<Standing> standing;
  /// The status together with the remark on it.
  std::string headline;
  /// The result file's text; only of a terminal request.
  std::string_view result;

  [[nodiscard]] bool isTerminal() const { return standing == Standing::terminal; }
};

/// Reads an answer of get_result; nothing when it does not begin with a status line. What is
/// returned refers to `answer`.
[[nodiscard]] std::optional<ResultAnswer> readResultAnswer(std::string_view answer);

/// The line about the request id in the answer of a dispatching tool, without its line feed:
/// "requestId:" and the id, which begins `column` characters behind the label's beginning.
[[nodiscard]] std::string requestIdLine(std::string_view requestId, std::size_t column);

/// The request id that the answer of a dispatching tool names, if it does.
[[nodiscard]] std::optional<std::string> readRequestId(std::string_view answer);

}  // namespace corvane::AnswerTexts
