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

/// Hardly anything can be told in less.
constexpr std::size_t leastColumns = 8;

/// `columns` without those for `text` and a gap; 0 when there are not so many.
std::size_t columnsBeside(std::string_view text, std::size_t columns) {
  return columns - std::min(columns, widestColumns(text) + widestColumns(gap));
}

/// The test, its place and its step in `columns`: a long name leaves room for what the step does.
std::string joined(const TestPlace& test, std::string_view step, std::size_t columns) {
  const std::string place = " " + FollowWords::place(test);
  const std::size_t forStep = std::min(widestColumns(step), columns / 2);
  const std::size_t besideStep = columns - forStep;
  const std::size_t forName = columnsBeside(place, besideStep);
  std::string line = cutToColumns(FollowWords::name(test), std::max(forName, leastColumns)) + place;
  const std::size_t left = columnsBeside(line, columns);
  if (left < leastColumns) return cutToColumns(line, columns);
  return line.append(gap).append(cutToColumns(step, left));
}

}  // namespace

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
  // What ran does so no longer.
  console.progress({});
  test.reset();
  step.clear();
  printLine(FollowWords::finishedTest(finished.test, style));
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
  const std::size_t room = columnsBeside(clock, columns);
  // What is on is more telling than for how long.
  if (room < leastColumns) return step.empty() ? status : step;
  const std::string& what = step.empty() ? status : step;
  const std::string front = test ? joined(*test, step, room) : cutToColumns(what, room);
  return front + std::string(gap) + clock;
}

std::string LiveView::time(FollowTime now) const {
  std::string text = countedSeconds(secondsBetween(beginning, now));
  const auto left = secondsLeft(now);
  if (left && *left >= 1) text += ", about " + countedSeconds(*left) + " left";
  return text;
}

std::optional<double> LiveView::secondsLeft(FollowTime now) const {
  if (!expectation || !test) return std::nullopt;
  return ctl::secondsLeft(expectation->plan, test->index, secondsBetween(testBeginning, now),
                          expectation->earlier);
}

}  // namespace corvane::ctl
