#include "corvanectl/follow/FollowWords.h"

#include <algorithm>

#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/results/RequestResult.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

using Step = AgentRunResult::Step;
using Test = AgentRunResult::Test;

std::string command(std::string_view name, std::string_view requestId) {
  return "'corvanectl " + std::string(name) + " " + oneLine(requestId) + "'";
}

std::string numbered(const Step& step) {
  return "step " + std::to_string(step.index);
}

/// The first step that is `wanted`; nullptr when there is none.
template <class Predicate>
const Step* firstStep(const Test& test, Predicate wanted) {
  const auto found = std::ranges::find_if(test.steps, wanted);
  return found == test.steps.end() ? nullptr : &*found;
}

/// Why a test did not just pass; empty when there is nothing to say.
std::string reason(const Test& test) {
  const auto hasReason = [](const Step& step) {
    return step.status == "failed" || step.failureReason.has_value();
  };
  if (const Step* step = firstStep(test, hasReason)) {
    return numbered(*step) + ": " + oneLine(step->failureReason.value_or(step->title));
  }
  if (const Step* step = firstStep(test, isHealed)) return "healed at " + numbered(*step);
  return {};
}

std::string mark(const Test& test, const Style& style) {
  if (test.status == "failed") return style.bad("✗");
  if (test.status != "passed") {
    return style.doubtful(test.status == "warning" ? "!" : "–");
  }
  return firstStep(test, isHealed) ? style.doubtful("~") : style.good("✓");
}

}  // namespace

std::string FollowWords::status(const events::StatusChanged& status) {
  std::string line = oneLine(status.status);
  if (status.queuePosition) line += " — position " + std::to_string(*status.queuePosition);
  if (status.message) line += " — " + oneLine(*status.message);
  return line;
}

std::string FollowWords::name(const TestPlace& test) {
  return test.name.empty() ? "test" : oneLine(test.name);
}

std::string FollowWords::place(const TestPlace& test) {
  std::string line = "(" + std::to_string(test.index + 1);
  if (test.count) line += "/" + std::to_string(*test.count);
  return line + ")";
}

std::string FollowWords::test(const TestPlace& test) {
  return name(test) + " " + place(test);
}

std::string FollowWords::step(const events::StepStarted& step) {
  std::string line = "step " + std::to_string(step.index) + "/" + std::to_string(step.count);
  if (!step.description.empty()) line += " " + oneLine(step.description);
  return line;
}

std::string FollowWords::finishedTest(const Test& test, const Style& style) {
  std::string line = mark(test, style) + " " + oneLine(test.testName) + "  " +
                     style.quiet(displaySeconds(test.durationSeconds));
  if (test.status != "passed" && test.status != "failed") line += "  " + oneLine(test.status);
  if (const std::string why = reason(test); !why.empty()) line += "  " + why;
  return line;
}

std::string FollowWords::health(Health health, std::string_view requestId) {
  switch (health) {
    case Health::well:
      return "Corvane.app is at work on the request.";
    case Health::appNotRunning:
      return "Corvane.app is not running, so the request does not move. Open the app, or withdraw "
             "the request with " +
             command("cancel", requestId) + ".";
    case Health::notPickedUp:
      return "Corvane.app runs but has not picked the request up. See whether it is signed in, or "
             "withdraw the request with " +
             command("cancel", requestId) + ".";
    case Health::stale:
      return "Corvane.app runs but the request has not moved for over a minute. Look at the app, "
             "or cancel the request with " +
             command("cancel", requestId) + ".";
  }
  return {};
}

std::string FollowWords::givenUp(Health health, double seconds) {
  const std::string time = displaySeconds(seconds);
  if (health == Health::appNotRunning) return "no Corvane.app has been running for " + time;
  return "Corvane.app has not worked on the request for " + time;
}

std::string FollowWords::whatBecomesOfIt(Health health, bool isPending) {
  switch (health) {
    case Health::well:
      return "the request goes on";
    case Health::appNotRunning:
      return isPending
                 ? "the request waits for the app"
                 : "the request does not go on; the app ends it as an error when it is opened";
    case Health::notPickedUp:
      return "the request waits for the app";
    case Health::stale:
      return "the request has not ended";
  }
  return {};
}

std::string FollowWords::refusal(std::string_view answer, std::string_view requestId) {
  if (answer.starts_with(AnswerTexts::unknownRequestCode)) {
    return "nobody knows the request " + std::string(requestId) +
           ": the id is wrong, or its result has been removed (results are kept for about 7 days)";
  }
  // What stands before the empty line is a code for programs.
  const std::size_t gap = answer.find(AnswerTexts::beforeResult);
  return std::string(gap == std::string_view::npos ? answer : answer.substr(gap + 2));
}

std::string FollowWords::waysOn(std::string_view requestId) {
  return "follow it with " + command("follow", requestId) + " or cancel it with " +
         command("cancel", requestId);
}

}  // namespace corvane::ctl
