#include "corvanectl/answers/StatusAnswer.h"

#include <algorithm>
#include <utility>

#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "corvanectl/answers/ToolRefusal.h"

namespace corvane::ctl {

namespace {

using Place = KnownRequest::Place;

std::optional<std::string> textIn(const AnyCodable& object, std::string_view key) {
  const auto* text = object.findAs<std::string>(key);
  return text ? std::optional(*text) : std::nullopt;
}

std::vector<KnownRequest> recentRequests(const AnyCodable::Object& snapshot) {
  std::vector<KnownRequest> requests;
  const auto* recent = snapshot.findAs<AnyCodable::Array>("recentRequests");
  if (!recent) return requests;
  for (const AnyCodable& each : *recent) {
    const auto id = textIn(each, keyOf<&AgentRunResult::requestId>());
    if (!id) continue;
    KnownRequest& request = requests.emplace_back();
    request.id = *id;
    request.status = textIn(each, keyOf<&AgentRunResult::status>()).value_or("");
    request.source = textIn(each, keyOf<&AgentRunResult::source>());
    request.project = textIn(each, keyOf<&AgentRunResult::projectName>());
    if (const auto* age = each.findAs<std::int64_t>("secondsSinceUpdate")) {
      request.secondsAgo = *age;
    }
  }
  return requests;
}

/// What the app has in hand, the one that was asked for last first: the queue is first in, first
/// out.
std::vector<KnownRequest> requestsInHand(const AgentActivity& activity) {
  std::vector<KnownRequest> requests;
  auto queued = activity.queued;
  std::sort(queued.begin(), queued.end(),
            [](const auto& a, const auto& b) { return a.position > b.position; });
  for (const auto& each : queued) {
    requests.push_back({.id = each.requestId,
                        .place = Place::queued,
                        .status = {},
                        .source = each.kind,
                        .project = {},
                        .secondsAgo = {}});
  }
  if (const auto& active = activity.active) {
    requests.push_back({.id = active->requestId,
                        .place = Place::active,
                        .status = {},
                        .source = active->kind,
                        .project = {},
                        .secondsAgo = {}});
  }
  return requests;
}

/// Appends those of `more` that are not there yet; of the others it takes what is not known yet.
void merge(std::vector<KnownRequest>& requests, std::vector<KnownRequest> more) {
  for (KnownRequest& each : more) {
    const auto known = std::find_if(requests.begin(), requests.end(),
                                    [&](const auto& request) { return request.id == each.id; });
    if (known == requests.end()) {
      requests.push_back(std::move(each));
      continue;
    }
    if (each.place != Place::ended) known->place = each.place;
    if (known->status.empty()) known->status = std::move(each.status);
    if (!known->source) known->source = std::move(each.source);
    if (!known->project) known->project = std::move(each.project);
    if (!known->secondsAgo) known->secondsAgo = each.secondsAgo;
  }
}

}  // namespace

StatusAnswer readStatus(AnyCodable::Object snapshot) {
  StatusAnswer status;
  if (const auto* running = snapshot.findAs<bool>("appRunning")) status.appRunning = *running;
  if (const auto* age = snapshot.findAs<std::int64_t>("activitySecondsSinceUpdate")) {
    status.secondsSinceHeartbeat = *age;
  }
  std::vector<KnownRequest> inHand;
  if (const auto* object = snapshot.findAs<AnyCodable::Object>("activity")) {
    AnyCodable::Object members = *object;
    takeFieldsExcept<>(members, status.activity.emplace());
    inHand = requestsInHand(*status.activity);
  }
  std::vector<KnownRequest> recent = recentRequests(snapshot);
  status.requests = status.appRunning ? std::move(inHand) : std::move(recent);
  merge(status.requests, status.appRunning ? std::move(recent) : std::move(inHand));
  status.snapshot = std::move(snapshot);
  return status;
}

StatusAnswer askStatus(Session& session) {
  constexpr std::string_view tool = "get_status";
  return readStatus(snapshotOf(ask(session, tool, {}), tool));
}

}  // namespace corvane::ctl
