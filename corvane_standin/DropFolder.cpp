#include "corvane_standin/DropFolder.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "CorvaneCore/requests/CancelMarker.h"
#include "CorvaneCore/text/Uuid.h"

namespace corvane::standin {

namespace {

namespace fs = std::filesystem;

bool hasSuffix(const fs::path& file, std::string_view suffix) {
  return file.native().ends_with(suffix);
}

/// The request id that the file's name carries before `suffix`, if it is one.
std::optional<std::string> requestIdOf(const fs::path& file, std::string_view suffix) {
  const std::string name = file.filename();
  return parseRequestId(std::string_view(name).substr(0, name.size() - suffix.size()));
}

/// The request in `file`; nothing when its sender has withdrawn it.
std::optional<DroppedRequest> readRequest(const fs::path& file, const std::string& id) {
  try {
    auto request = AgentRunRequest::read(file);
    if (parseRequestId(request.requestId) != id) {
      return DroppedRequest{id, UnusableRequest{"the file is named after another request id than "
                                                "it holds"}};
    }
    return DroppedRequest{id, std::move(request)};
  } catch (const FileError& error) {
    if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
    return DroppedRequest{id, UnusableRequest{error.code().message()}};
  } catch (const DecodeError& error) {
    return DroppedRequest{id, UnusableRequest{error.what()}};
  }
}

/// What requests are sorted by. Unusable ones go first: they wait for nothing.
std::pair<Date, std::string_view> arrivalOf(const DroppedRequest& dropped) {
  const auto* run = std::get_if<AgentRunRequest>(&dropped.request);
  return {run ? run->createdAt : Date::min(), dropped.id};
}

}  // namespace

DropFolder::Arrivals DropFolder::take() {
  Arrivals arrivals;
  const auto files = listVisible(paths.agentRunRequestsDirectory());
  for (const auto& file : files) {
    if (isPassedOver(file)) continue;
    if (hasSuffix(file, AgentRunRequest::fileSuffix)) takeRequest(file, arrivals);
    if (hasSuffix(file, CancelMarker::fileSuffix)) takeMarker(file, arrivals);
  }
  std::sort(arrivals.requests.begin(), arrivals.requests.end(),
            [](const auto& left, const auto& right) { return arrivalOf(left) < arrivalOf(right); });
  return arrivals;
}

bool DropFolder::isPassedOver(const fs::path& file) {
  const auto found = passedOver.find(file);
  if (found == passedOver.end()) return false;
  if (readStamp(file) == found->second) return true;
  passedOver.erase(found);
  return false;
}

DropFolder::Removal DropFolder::remove(const fs::path& file) {
  std::error_code error;
  if (fs::remove(file, error)) return Removal::removed;
  if (!error) return Removal::wasGone;
  log.warn(displayPath(file) + " cannot be removed and is passed over: " + error.message());
  passedOver.insert_or_assign(file, readStamp(file));
  return Removal::impossible;
}

void DropFolder::takeRequest(const fs::path& file, Arrivals& arrivals) {
  const auto id = requestIdOf(file, AgentRunRequest::fileSuffix);
  auto dropped = id ? readRequest(file, *id) : std::nullopt;
  const auto removal = remove(file);
  if (!id) {
    log.warn(displayPath(file) + " is not named after a request id and goes unanswered");
    return;
  }
  if (!dropped || removal == Removal::wasGone) return;
  if (removal == Removal::impossible) {
    dropped->request = UnusableRequest{"the file cannot be taken out of the drop folder"};
  }
  arrivals.requests.push_back(std::move(*dropped));
}

void DropFolder::takeMarker(const fs::path& file, Arrivals& arrivals) {
  const auto id = requestIdOf(file, CancelMarker::fileSuffix);
  if (remove(file) != Removal::wasGone && id) arrivals.cancelled.push_back(*id);
}

}  // namespace corvane::standin
