#include "corvanectl/commands/Following.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "CorvaneCore/files/Files.h"
#include "corvanectl/commands/StepPictures.h"
#include "corvanectl/follow/EventLines.h"
#include "corvanectl/follow/FollowWords.h"
#include "corvanectl/follow/LiveView.h"
#include "corvanectl/follow/PlainLines.h"
#include "corvanectl/follow/ServerWatch.h"
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

/// Follows one request.
class Following {
 public:
  Following(Follower::Request request, const FollowOptions& options, Session& session, Deadline end,
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
      ServerWatch watch(request.id, session.client(), context.interruption,
                        {context.usualTimeout, end});
      session.client().whileWaiting(tickInterval, [this, &watch] { observer->tick(watch.now()); });
      const Follower::Limits limits{end, Seconds(options.appTimeout)};
      const auto outcome = Follower(request, limits, watch, *observer).run();
      session.client().whileWaiting(Seconds(0), {});
      console.endProgress();
      return report(outcome);
    } catch (...) {
      if (!reported) leave();
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
    return std::make_unique<LiveView>(console, place, Style(usesColor(options.color, stream)), now,
                                      expectation());
  }

  /// What the run can be measured by.
  std::optional<LiveView::Expectation> expectation() {
    if (!request.plan || !request.project) return std::nullopt;
    return LiveView::Expectation{
        *request.plan, earlierDurations(session.client(), *request.project, context.usualTimeout)};
  }

  ExitStatus report(const Follower::Outcome& outcome) {
    const RequestLook& look = outcome.look;
    switch (outcome.end) {
      case Follower::End::finished:
        reported = true;
        return reportEnd(look);
      case Follower::End::refused:
        reported = true;
        console.complain(FollowWords::refusal(*look.refusal, request.id));
        return ExitStatus::failure;
      case Follower::End::timedOut:
        console.complain("the request has not finished in the time given; its status is " +
                         look.status);
        leave();
        return ExitStatus::timedOut;
      case Follower::End::noApp:
        console.complain(FollowWords::givenUp(outcome.health, options.appTimeout));
        leave();
        return ExitStatus::noApp;
    }
    return ExitStatus::otherOutcome;
  }

  ExitStatus reportEnd(const RequestLook& look) {
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

  /// Leaves the request to itself, or cancels it.
  void leave() {
    reported = true;
    session.client().whileWaiting(Seconds(0), {});
    console.endProgress();
    if (!options.cancelOnExit) {
      console.complain("the request goes on; " + FollowWords::waysOn(request.id));
      return;
    }
    try {
      (void)session.client().callTool("cancel_run", AnyCodable::Object{{"requestId", request.id}},
                                      after(cancelTimeout));
      console.complain("the request was told to cancel: " + request.id);
    } catch (const std::exception& error) {
      console.complain(std::string("the request could not be cancelled: ") + error.what());
      console.complain("the request goes on; " + FollowWords::waysOn(request.id));
    }
  }

  Follower::Request request;
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

ExitStatus follow(Follower::Request request, const FollowOptions& options, Session& session,
                  Deadline end, CommandContext& context) {
  return Following(std::move(request), options, session, end, context).run();
}

}  // namespace corvane::ctl
