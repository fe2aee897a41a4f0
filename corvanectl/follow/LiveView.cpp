#include "corvanectl/follow/LiveView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "corvanectl/follow/FollowWords.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view gap = " · ";

double secondsBetween(FollowTime begin, FollowTime end) {
  return std::chrono::duration<double>(end - begin).count();
}

/// Whole seconds, as they are counted up.
std::string countedSeconds(double seconds) {
  return displaySeconds(std::floor(std::max(seconds, 0.0)));
}

/// `front` and `back` with a gap between them, in `columns`: what does not fit is cut off the
/// front, until hardly anything of it would be left.
std::string joinedTo(std::string_view front, std::string_view back, std::size_t columns) {
  constexpr std::size_t leastFront = 8;
  const std::size_t taken = widestColumns(back) + widestColumns(gap);
  if (columns < taken + leastFront) return cutToColumns(front, columns);
  return cutToColumns(front, columns - taken).append(gap).append(back);
}

}  // namespace

LiveView::LiveView(Console& console, ProgressPlace place, Style style, FollowTime beginning,
                   std::optional<Expectation> expectation)
    : console(console),
      place(place),
      style(style),
      beginning(beginning),
      expectation(std::move(expectation)),
      testBeginning(beginning),
      latest(beginning) {}

void LiveView::take(const FollowEvent& event, FollowTime now) {
  latest = now;
  std::visit([this](const auto& each) { show(each); }, event);
}

void LiveView::tick(FollowTime now) {
  console.progress(composed(now));
}

void LiveView::show(const events::Began& began) {
  requestId = began.requestId;
}

void LiveView::show(const events::StatusChanged& changed) {
  status = changed.status == "pending" ? "waiting for Corvane.app to pick the request up"
                                       : FollowWords::status(changed);
}

void LiveView::show(const events::TestStarted& started) {
  test = started.test;
  testBeginning = latest;
}

void LiveView::show(const events::StepStarted& started) {
  step = FollowWords::step(started);
}

void LiveView::show(const events::TestFinished& finished) {
  printLine(FollowWords::finishedTest(finished.test, style));
  test.reset();
  step.clear();
}

void LiveView::show(const events::HealthChanged& changed) {
  const std::string line = FollowWords::health(changed.health, requestId);
  printLine(changed.health == Health::well ? line : style.doubtful(line));
}

void LiveView::printLine(std::string line) {
  console.printProgress(place, line + "\n");
}

std::string LiveView::composed(FollowTime now) const {
  const std::size_t columns = console.progressStream(place).size().columns - 1;
  const std::string clock = time(now);
  if (step.empty()) return joinedTo(status, clock, columns);
  if (!test) return joinedTo(step, clock, columns);
  // A long name leaves room for what the step does.
  const std::string name = FollowWords::test(*test);
  const std::size_t room = columns - std::min(columns, widestColumns(clock) + widestColumns(gap));
  const std::size_t forStep = std::min(widestColumns(gap) + widestColumns(step), room / 2);
  return joinedTo(joinedTo(cutToColumns(name, room - forStep), step, room), clock, columns);
}

std::string LiveView::time(FollowTime now) const {
  std::string text = countedSeconds(secondsBetween(beginning, now));
  if (const auto left = secondsLeft(now)) text += ", about " + countedSeconds(*left) + " left";
  return text;
}

std::optional<double> LiveView::secondsLeft(FollowTime now) const {
  if (!expectation || !test) return std::nullopt;
  return ctl::secondsLeft(expectation->plan, test->index, secondsBetween(testBeginning, now),
                          expectation->earlier);
}

}  // namespace corvane::ctl
