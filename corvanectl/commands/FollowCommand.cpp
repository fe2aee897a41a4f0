#include <algorithm>
#include <utility>

#include "corvanectl/commands/Commands.h"
#include "corvanectl/commands/Follow.h"
#include "corvanectl/commands/ResultPrinting.h"
#include "corvanectl/results/ResultAnswer.h"
#include "corvanectl/results/ResultSummary.h"

namespace corvane {

namespace {

constexpr std::string_view tool = "get_result";
constexpr Seconds longestPoll{120};
/// A server that answers without waiting is not asked more often than this.
constexpr Seconds shortestPoll{0.5};
/// What the answer to a last poll may need beyond the user's time.
constexpr Seconds lastAnswerPatience{2};

Seconds timeUntil(Deadline deadline) {
  return deadline == never ? Seconds::max() : Seconds(deadline - std::chrono::steady_clock::now());
}

std::string endingInLine(std::string text) {
  if (!text.ends_with('\n')) text += '\n';
  return text;
}

/// Follows one request.
class Follower {
 public:
  Follower(const FollowCommand& command, Session& session, Deadline end, CommandContext& context)
      : command(command), session(session), end(end), context(context), console(context.console) {}

  ExitStatus run() {
    console.startProgress(command.json ? ProgressPlace::besideResults : ProgressPlace::withResults);
    while (true) {
      const Deadline nextPoll = after(shortestPoll);
      const ToolResult result = poll();
      if (result.isError) return reportRefusal(result);
      const ResultAnswer answer = ResultAnswer::parse(result.firstText());
      if (answer.terminal) return reportEnd(answer, result);
      showHealth(answer);
      if (hasPassed(end)) return reportTimeout(answer);
      context.interruption.wait({}, nextPoll);
    }
  }

 private:
  ToolResult poll() {
    const Seconds left = timeUntil(end);
    const auto wait =
        std::chrono::ceil<std::chrono::seconds>(std::clamp(left, Seconds(0), longestPoll));
    const Seconds patience = std::min<Seconds>(wait + usualPatience, left + lastAnswerPatience);
    return ToolResult::from(session.client().callTool(
        tool, AnyCodable::Object{{"requestId", command.requestId}, {"waitSeconds", wait.count()}},
        after(patience), [this](std::string_view message) { showProgress(message); }));
  }

  /// Every poll begins by repeating the last message, which is news only if it differs.
  void showProgress(std::string_view message) {
    if (message == lastMessage) return;
    lastMessage = message;
    console.progress(message);
  }

  /// What is wrong stays in sight until it is over or the request moves on.
  void showHealth(const ResultAnswer& answer) {
    const bool wasWell = std::exchange(isWell, answer.healthy);
    if (!isWell) {
      console.progress(answer.headline);
    } else if (!wasWell) {
      console.progress(lastMessage);
    }
  }

  ExitStatus reportRefusal(const ToolResult& result) {
    console.endProgress();
    PictureOutput pictures(command.pictures, tool, inlinePictures(context));
    printResult(result, pictures, console);
    return exitStatusOf(result);
  }

  ExitStatus reportTimeout(const ResultAnswer& answer) {
    console.endProgress();
    console.complain("the request has not finished in the time given; its status is " +
                     answer.headline);
    return ExitStatus::timedOut;
  }

  ExitStatus reportEnd(const ResultAnswer& answer, const ToolResult& result) {
    console.endProgress();
    console.print(command.json ? endingInLine(answer.json)
                               : summarizeResult(answer.json, answer.status));
    if (command.pictures) savePictures(result);
    return answer.exitStatus();
  }

  /// Asks once more, with pictures. The answer repeats what is known and adds the blocks to show.
  void savePictures(const ToolResult& known) {
    const ToolResult result = ToolResult::from(session.callTool(
        tool, AnyCodable::Object{{"requestId", command.requestId}, {"includeStepTrace", true}}));
    // Beside JSON, pictures would be among the messages.
    PictureOutput pictures(command.pictures, tool,
                           command.json ? std::nullopt : std::optional(inlinePictures(context)));
    for (std::size_t i = known.content.size(); i < result.content.size(); ++i) {
      const std::string line = blockText(result.content[i], pictures) + "\n";
      if (command.json) {
        console.printError(line);
      } else {
        console.print(line);
      }
    }
  }

  const FollowCommand& command;
  Session& session;
  Deadline end;
  CommandContext& context;
  Console& console;
  std::string lastMessage;
  bool isWell = true;
};

}  // namespace

Deadline followEnd(const ServerOptions& options) {
  return options.timeout ? after(Seconds(*options.timeout)) : never;
}

ExitStatus follow(const FollowCommand& command, Session& session, Deadline end,
                  CommandContext& context) {
  return Follower(command, session, end, context).run();
}

ExitStatus execute(const FollowCommand& command, CommandContext& context) {
  const Deadline end = followEnd(context.options);
  Session session(context);
  return follow(command, session, end, context);
}

}  // namespace corvane
