#include "corvane_standin/jobs/DropFolder.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/text/Uuid.h"

namespace corvane::standin {

namespace {

namespace fs = std::filesystem;

template <class Request>
constexpr std::string_view sourceOf = "";
template <>
constexpr std::string_view sourceOf<AgentRunRequest> = "run_test";
template <>
constexpr std::string_view sourceOf<AgentExploreRequest> = "explore_flow";
template <>
constexpr std::string_view sourceOf<AgentTestSchema> = "create_test";
/// Which of its three tools sent it stands in the file, which is unusable when this is needed.
template <>
constexpr std::string_view sourceOf<AgentLibraryRequest> = "library";

template <class Dropped>
bool isFileOf(const fs::path& file) {
  return file.native().ends_with(Dropped::fileSuffix);
}

/// The request id that the file's name ends in before its suffix, if it does.
template <class Dropped>
std::optional<std::string> idInName(const fs::path& file) {
  const std::string name = file.filename();
  const auto stem = std::string_view(name).substr(0, name.size() - Dropped::fileSuffix.size());
  // A payload is named after its project and test too.
  constexpr std::size_t idLength = 36;
  const bool hasPrefix = std::is_same_v<Dropped, AgentTestSchema> && stem.size() > idLength;
  return parseRequestId(hasPrefix ? stem.substr(stem.size() - idLength) : stem);
}

/// The id that the request is answered under: the one it holds. Only a payload may hold none.
std::optional<std::string> idIn(const AgentTestSchema& payload, const fs::path& file,
                                const Ids& ids) {
  return payload.requestId ? parseRequestId(*payload.requestId)
                           : ids.make("payload", "", file.filename().native());
}
template <class Request>
std::optional<std::string> idIn(const Request& request, const fs::path&, const Ids&) {
  return parseRequestId(request.requestId);
}

/// Whether a file named after `idInName` may hold a request of `id`. People may drop payloads too,
/// under any name.
template <class Request>
bool fits(const std::optional<std::string>& idInName, const std::optional<std::string>& id) {
  return id && (id == idInName || (std::is_same_v<Request, AgentTestSchema> && !idInName));
}

/// The request in `file`; nothing when its sender has withdrawn it or there is no id to answer it
/// under.
template <class Request>
std::optional<DroppedRequest> readRequest(const fs::path& file, const Ids& ids) {
  const auto named = idInName<Request>(file);
  const auto unusable = [&named](std::string reason) -> std::optional<DroppedRequest> {
    if (!named) return std::nullopt;
    return DroppedRequest{*named, UnusableRequest{std::move(reason), sourceOf<Request>}};
  };
  try {
    auto request = Request::read(file);
    const auto id = idIn(request, file, ids);
    if (fits<Request>(named, id)) return DroppedRequest{*id, std::move(request)};
    return unusable("the file is named after another request id than it holds");
  } catch (const FileError& error) {
    if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
    return unusable(error.code().message());
  } catch (const DecodeError& error) {
    return unusable(error.what());
  }
}

/// When a request was made. Unusable ones go first: they wait for nothing.
struct DateOf {
  Date operator()(const UnusableRequest&) const { return Date::min(); }
  Date operator()(const auto& request) const { return request.createdAt; }
};

/// What requests are sorted by.
std::pair<Date, std::string_view> arrivalOf(const DroppedRequest& dropped) {
  return {std::visit(DateOf(), dropped.request), dropped.id};
}

}  // namespace

DropFolder::Arrivals DropFolder::take() {
  std::erase_if(delayed, [](const auto& each) { return !fileExists(each.first); });
  Arrivals arrivals;
  for (const auto& file : listVisible(paths.agentImportsDirectory())) {
    if (isFileOf<AgentTestSchema>(file)) takeRequest<AgentTestSchema>(file, arrivals);
  }
  for (const auto& file : listVisible(paths.agentRunRequestsDirectory())) {
    if (isFileOf<AgentRunRequest>(file)) takeRequest<AgentRunRequest>(file, arrivals);
    if (isFileOf<AgentExploreRequest>(file)) takeRequest<AgentExploreRequest>(file, arrivals);
    if (isFileOf<AgentLibraryRequest>(file)) takeRequest<AgentLibraryRequest>(file, arrivals);
    if (isFileOf<CancelMarker>(file)) takeMarker(file, arrivals);
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

bool DropFolder::isDelayed(const fs::path& file) const {
  const auto found = delayed.find(file);
  return found != delayed.end() && !found->second.seen.hasReached(found->second.seconds);
}

bool DropFolder::isDelayed(const fs::path& file, const DroppedRequest& dropped) {
  if (!delayed.contains(file)) {
    const double seconds = delay(dropped);
    if (seconds > 0) delayed.insert_or_assign(file, Delayed{Stopwatch(clock), seconds});
  }
  return isDelayed(file);
}

DropFolder::Removal DropFolder::remove(const fs::path& file) {
  std::error_code error;
  if (fs::remove(file, error)) return Removal::removed;
  if (!error) return Removal::wasGone;
  log.warn(displayPath(file) + " cannot be removed and is passed over: " + error.message());
  passedOver.insert_or_assign(file, readStamp(file));
  return Removal::impossible;
}

template <class Request>
void DropFolder::takeRequest(const fs::path& file, Arrivals& arrivals) {
  if (isPassedOver(file) || isDelayed(file)) return;
  auto dropped = readRequest<Request>(file, ids);
  if (dropped && isDelayed(file, *dropped)) return;
  const auto removal = remove(file);
  if (removal == Removal::wasGone) return;
  if (!dropped) {
    log.warn(displayPath(file) + " is not named after a request id and goes unanswered");
    return;
  }
  if (removal == Removal::impossible) {
    dropped->request =
        UnusableRequest{"the file cannot be taken out of the drop folder", sourceOf<Request>};
  }
  arrivals.requests.push_back(std::move(*dropped));
}

void DropFolder::takeMarker(const fs::path& file, Arrivals& arrivals) {
  if (isPassedOver(file)) return;
  const auto id = idInName<CancelMarker>(file);
  if (remove(file) != Removal::wasGone && id) arrivals.cancelled.push_back(*id);
}

}  // namespace corvane::standin
