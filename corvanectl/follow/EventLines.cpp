#include "corvanectl/follow/EventLines.h"

#include <cmath>
#include <string>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "corvanectl/results/RequestResult.h"

namespace corvane::ctl {

namespace {

std::string_view nameOf(Health health) {
  switch (health) {
    case Health::well:
      return "well";
    case Health::appNotRunning:
      return "appNotRunning";
    case Health::notPickedUp:
      return "notPickedUp";
    case Health::stale:
      return "stale";
  }
  return {};
}

void add(JsonObject& line, const TestPlace& test) {
  line.set("testIndex", static_cast<std::int64_t>(test.index));
  if (test.count) line.set("testCount", static_cast<std::int64_t>(*test.count));
  if (!test.name.empty()) line.set("testName", test.name);
}

/// The result as JSON or, when it is none, as a text.
AnyCodable resultOf(const std::string& json) {
  try {
    return readJson(json);
  } catch (const DecodeError&) {
    return json;
  }
}

/// The object for an event, but for the time.
struct LineOf {
  JsonObject operator()(const events::Began& began) const {
    return {{"event", began.dispatched ? "dispatched" : "following"},
            {"requestId", began.requestId}};
  }
  JsonObject operator()(const events::PickedUp&) const { return {{"event", "pickedUp"}}; }
  JsonObject operator()(const events::Planned& planned) const {
    AnyCodable::Array names;
    for (const auto& test : planned.expectation.plan.tests) names.emplace_back(test.name);
    return {{"event", "planned"}, {"tests", std::move(names)}};
  }
  JsonObject operator()(const events::StatusChanged& changed) const {
    JsonObject line{{"event", "status"}, {"status", changed.status}};
    if (changed.message) line.set("message", *changed.message);
    if (changed.queuePosition) line.set("queuePosition", *changed.queuePosition);
    return line;
  }
  JsonObject operator()(const events::TestStarted& started) const {
    JsonObject line{{"event", "testStarted"}};
    add(line, started.test);
    return line;
  }
  JsonObject operator()(const events::StepStarted& started) const {
    JsonObject line{{"event", "step"}, {"stepIndex", started.index}, {"stepCount", started.count}};
    if (started.test) add(line, *started.test);
    if (!started.description.empty()) line.set("description", started.description);
    return line;
  }
  JsonObject operator()(const events::TestFinished& finished) const {
    JsonObject line{{"event", "testFinished"}, {"test", encodeValue(finished.test)}};
    add(line, finished.place);
    return line;
  }
  JsonObject operator()(const events::HealthChanged& changed) const {
    return {{"event", "health"}, {"health", nameOf(changed.health)}};
  }
  JsonObject operator()(const events::Finished& finished) const {
    return {{"event", "finished"},
            {"status", finished.status},
            {"exitStatus", static_cast<std::int64_t>(exitStatusOf(finished.status))},
            {"result", resultOf(finished.json)}};
  }
  JsonObject operator()(const events::LeftOff& left) const {
    JsonObject line{{"event", "leftOff"}};
    if (left.exitStatus) line.set("exitStatus", static_cast<std::int64_t>(*left.exitStatus));
    return line;
  }
};

}  // namespace

void EventLines::take(const FollowEvent& event, FollowTime now) {
  JsonObject line = std::visit(LineOf(), event);
  const std::chrono::duration<double, std::milli> passed = now - beginning;
  line.set("seconds", std::round(passed.count()) / 1000);
  console.print(toJson(std::move(line)) + "\n");
}

}  // namespace corvane::ctl
