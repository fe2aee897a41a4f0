#include "corvanectl/commands/Following.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "CorvaneCore/files/Files.h"
#include "corvanectl/commands/StepPictures.h"
#include "corvanectl/follow/EventLines.h"
#include "corvanectl/follow/FollowWords.h"
#include "corvanectl/follow/Follower.h"
#include "corvanectl/follow/LiveView.h"
#include "corvanectl/follow/PlainLines.h"
#include "corvanectl/results/RequestResult.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

constexpr Seconds tickInterval{0.25};
/// What cancelling on the way out may take.
constexpr Seconds cancelTimeout{5};

std::string endingInLine(std::string text) {
  if (!text.ends_with('\n')) text += '\n';
  return text;
}

ExitStatus statusOf(Follower::End end) {
  if (end == Follower::End::timedOut) return ExitStatus::timedOut;
  return end == Follower::End::noApp ? ExitStatus::noApp : ExitStatus::failure;
}

/// Follows one request.
class Following {
 public:
  Following(FollowedRequest request, const FollowOptions& options, Session& session, Deadline end,
            CommandContext& context)
      : request(std::move(request)),
        options(options),
        session(session),
        end(end),
        context(context),
        console(context.console),
        place(options.json || options.events ? ProgressPlace::besideResults
                                             : ProgressPlace::withResults) {}
  Following(const Following&) = delete;
  Following& operator=(const Following&) = delete;
  ~Following() { session.client().whileWaiting(Seconds(0), {}); }

  ExitStatus run() {
    try {
      observer = makeObserver();
      ServerWatch watch(request.id, request.run, session.client(), context.interruption,
                        {context.usualTimeout, end});
      session.client().whileWaiting(tickInterval, [this, &watch] { observer->tick(watch.now()); });
      const Follower::Limits limits{end, Seconds(options.appTimeout)};
      const Follower::Request followed{request.id, request.run.has_value()};
      const auto outcome = Follower(followed, limits, watch, *observer).run();
      session.client().whileWaiting(Seconds(0), {});
      return report(outcome);
    } catch (...) {
      if (!reported) depart();
      throw;
    }
  }

 private:
  std::unique_ptr<FollowObserver> makeObserver() {
    const FollowTime now = std::chrono::steady_clock::now();
    if (options.events) return std::make_unique<EventLines>(console, now);
    const TextStream& stream = console.progressStream(place);
    if (!stream.canRedraw()) {
      return std::make_unique<PlainLines>(
          console, place,
          options.json ? PlainLines::Extent::health : PlainLines::Extent::everything);
    }
    console.startProgress(place);
    if (request.run) request.run->measured = true;
    return std::make_unique<LiveView>(console, place, Style(usesColor(options.color, stream)), now);
  }

  ExitStatus report(const Follower::Outcome& outcome) {
    if (outcome.end == Follower::End::finished) return reportEnd(outcome.look);
    const ExitStatus status = statusOf(outcome.end);
    leaveOff(status);
    if (outcome.end == Follower::End::refused) {
      console.complain(FollowWords::refusal(*outcome.look.refusal, request.id));
      return status;
    }
    console.complain(outcome.end == Follower::End::noApp
                         ? FollowWords::givenUp(outcome.health, options.appTimeout)
                         : "the request has not finished in the time given; its status is " +
                               outcome.look.status);
    goOrCancel(FollowWords::whatBecomesOfIt(
        outcome.health, outcome.look.standing == AnswerTexts::Standing::pending));
    return status;
  }

  ExitStatus reportEnd(const RequestLook& look) {
    reported = true;
    console.endProgress();
    if (options.json) console.print(endingInLine(look.json));
    if (place == ProgressPlace::withResults) {
      console.print(summarizeResult(look.json, look.status, TestLines::leftOut));
    }
    const ExitStatus status = exitStatusOf(look.status);
    bool written = false;
    try {
      written = writeFiles(look);
    } catch (const std::exception& error) {
      console.endProgress();
      console.complain(error.what());
    }
    // How the request went is worth more than a picture of it, or a report.
    return written || status != ExitStatus::success ? status : ExitStatus::inputOutput;
  }

  /// Whether all that the user asked for could be written.
  bool writeFiles(const RequestLook& look) {
    // Reports need the pictures of more than one step.
    if (!options.reports.areGiven()) {
      showStepPictures(request.id, look, options, session, context);
      return true;
    }
    const Report report = makeReport(request.id, look.status, look.json);
    return writeReports(options.reports, options.pictures, report, session, context);
  }

  /// Ends the view. `status` is how the program ends, when that is known.
  void leaveOff(std::optional<ExitStatus> status) {
    reported = true;
    session.client().whileWaiting(Seconds(0), {});
    if (observer) observer->take(events::LeftOff{status}, std::chrono::steady_clock::now());
    console.endProgress();
  }

  /// Leaves while something is being thrown.
  void depart() {
    try {
      leaveOff(std::nullopt);
    } catch (...) {
      // That nobody reads what happens is no reason not to cancel.
    }
    goOrCancel(FollowWords::whatBecomesOfIt(Health::well, false));
  }

  /// Leaves the request to itself, or cancels it; says which.
  void goOrCancel(const std::string& whatBecomesOfIt) {
    if (options.cancelOnExit && cancel()) return;
    console.complain(whatBecomesOfIt + "; " + FollowWords::waysOn(request.id));
  }

  bool cancel() {
    try {
      (void)session.client().callTool("cancel_run", AnyCodable::Object{{"requestId", request.id}},
                                      after(cancelTimeout));
      console.complain("the request was told to cancel: " + request.id);
      return true;
    } catch (const std::exception& error) {
      console.complain(std::string("the request could not be cancelled: ") + error.what());
      return false;
    }
  }

  FollowedRequest request;
  const FollowOptions& options;
  Session& session;
  Deadline end;
  CommandContext& context;
  Console& console;
  ProgressPlace place;
  std::unique_ptr<FollowObserver> observer;
  /// Whether the user has been told how following ended.
  bool reported = false;
};

}  // namespace

ExitStatus follow(FollowedRequest request, const FollowOptions& options, Session& session,
                  Deadline end, CommandContext& context) {
  return Following(std::move(request), options, session, end, context).run();
}

}  // namespace corvane::ctl
