#include "corvanectl/commands/FollowCommand.h"

#include <algorithm>
#include <utility>

#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/commands/ResultOutput.h"
#include "corvanectl/results/RequestResult.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view examples = R"(  corvanectl follow REQUEST_ID --pictures shots
  corvanectl follow REQUEST_ID --timeout 600 --json
)";

constexpr std::string_view tool = "get_result";
constexpr Seconds longestPoll{120};
/// A server that answers without waiting is not asked more often than this.
constexpr Seconds shortestPoll{0.5};
/// What the answer to a last poll may need beyond the user's time.
constexpr Seconds lastAnswerTimeout{2};

Seconds timeUntil(Deadline deadline) {
  return deadline == never ? Seconds::max() : Seconds(deadline - std::chrono::steady_clock::now());
}

std::string endingInLine(std::string text) {
  if (!text.ends_with('\n')) text += '\n';
  return text;
}

/// What the answer says; it refers to `result`.
AnswerTexts::ResultAnswer readAnswer(const ToolResult& result) {
  auto answer = AnswerTexts::readResultAnswer(result.firstText());
  if (!answer) throw ProtocolError("the answer of get_result does not begin with a status");
  return *std::move(answer);
}

/// Follows one request.
class Follower {
 public:
  Follower(const FollowOptions& options, Session& session, Deadline end, CommandContext& context)
      : options(options),
        session(session),
        end(end),
        context(context),
        console(context.console),
        // Beside JSON, pictures would be among the messages.
        output(console, tool, options.pictures, options.json ? nullptr : &context.pictureViewer) {}

  ExitStatus run() {
    console.startProgress(options.json ? ProgressPlace::besideResults : ProgressPlace::withResults);
    while (true) {
      const Deadline nextPoll = after(shortestPoll);
      const ToolResult result = poll();
      if (result.isError) return reportRefusal(result);
      const auto answer = readAnswer(result);
      if (answer.isTerminal()) return reportEnd(answer, result);
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
    const Seconds timeout =
        std::min<Seconds>(wait + context.usualTimeout, left + lastAnswerTimeout);
    return ToolResult::from(session.client().callTool(
        tool, AnyCodable::Object{{"requestId", options.requestId}, {"waitSeconds", wait.count()}},
        after(timeout), [this](std::string_view message) { showProgress(message); }));
  }

  /// Every poll begins by repeating the last message, which is news only if it differs.
  void showProgress(std::string_view message) {
    if (message == lastMessage) return;
    lastMessage = message;
    console.progress(message);
  }

  /// What is wrong stays in sight until it is over or the request moves on.
  void showHealth(const AnswerTexts::ResultAnswer& answer) {
    const bool wasWell =
        std::exchange(isWell, answer.standing == AnswerTexts::Standing::inProgress);
    if (!isWell) {
      console.progress(answer.headline);
    } else if (!wasWell) {
      console.progress(lastMessage);
    }
  }

  ExitStatus reportRefusal(const ToolResult& result) {
    console.endProgress();
    output.print(result);
    return exitStatusOf(result);
  }

  ExitStatus reportTimeout(const AnswerTexts::ResultAnswer& answer) {
    console.endProgress();
    console.complain("the request has not finished in the time given; its status is " +
                     answer.headline);
    return ExitStatus::timedOut;
  }

  ExitStatus reportEnd(const AnswerTexts::ResultAnswer& answer, const ToolResult& result) {
    console.endProgress();
    console.print(options.json ? endingInLine(std::string(answer.result))
                               : summarizeResult(answer.result, answer.status));
    if (options.pictures) savePictures(result);
    return exitStatusOf(answer.status);
  }

  /// Asks once more, with pictures. The answer repeats what is known and adds the blocks to show.
  void savePictures(const ToolResult& known) {
    const ToolResult result = ToolResult::from(session.callTool(
        tool, AnyCodable::Object{{"requestId", options.requestId}, {"includeStepTrace", true}}));
    for (std::size_t i = known.content.size(); i < result.content.size(); ++i) {
      std::string line;
      output.append(result.content[i], line);
      line += '\n';
      if (options.json) {
        console.printError(line);
      } else {
        console.print(line);
      }
    }
  }

  const FollowOptions& options;
  Session& session;
  Deadline end;
  CommandContext& context;
  Console& console;
  ResultOutput output;
  std::string lastMessage;
  bool isWell = true;
};

}  // namespace

Deadline followEnd(const ServerOptions& options) {
  return options.timeout ? after(Seconds(*options.timeout)) : never;
}

ExitStatus follow(const FollowOptions& options, Session& session, Deadline end,
                  CommandContext& context) {
  return Follower(options, session, end, context).run();
}

Command::About FollowCommand::about() const {
  return {"follow", "Wait for a request and show how it went", examples};
}

void FollowCommand::addOptions(CLI::App& app) {
  addRequestId(app, options.requestId);
  addPictures(app, options.pictures);
  addJson(app, options.json, "Print the final result as JSON");
}

ExitStatus FollowCommand::execute(CommandContext& context) const {
  const Deadline end = followEnd(context.options);
  Session session(context);
  return follow(options, session, end, context);
}

}  // namespace corvane::ctl
