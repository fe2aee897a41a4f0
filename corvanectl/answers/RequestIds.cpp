#include "corvanectl/answers/RequestIds.h"

#include <algorithm>

#include "CorvaneCore/text/Unicode.h"
#include "CorvaneCore/text/Uuid.h"

namespace corvane::ctl {

namespace {

/// Whether `text` has the form of the beginning of an id.
bool mayBeginId(std::string_view text) {
  return !text.empty() &&
         text.find_first_not_of("0123456789abcdefABCDEF-") == std::string_view::npos;
}

/// Whether the server need not be asked what the name stands for.
bool isWholeId(const std::string& named) {
  if (parseRequestId(named)) return true;
  if (named == lastRequest || mayBeginId(named)) return false;
  throw UsageError("'" + named + "' is neither the id of a request nor the beginning of one nor '" +
                   std::string(lastRequest) + "' ('corvanectl list' shows requests)");
}

}  // namespace

std::string wholeRequestId(const std::string& named, const std::vector<KnownRequest>& requests) {
  if (named == lastRequest) {
    if (!requests.empty()) return requests.front().id;
    throw UsageError(
        "there is no last request: Corvane.app has none in hand and has answered none "
        "of late");
  }
  if (isWholeId(named)) return named;
  const std::string beginning = asciiLowercase(named);
  std::vector<std::string> found;
  for (const KnownRequest& request : requests) {
    if (request.id.starts_with(beginning)) found.push_back(request.id);
  }
  if (found.size() == 1) return found.front();
  if (found.empty()) {
    throw UsageError("no request that the server tells of begins with '" + named +
                     "'. It tells of the five that changed last and of what the app has in hand "
                     "('corvanectl list'); name others by their whole id");
  }
  std::string ids;
  for (const auto& id : found) ids += (ids.empty() ? "" : ", ") + id;
  throw UsageError("'" + named + "' is the beginning of several requests: " + ids);
}

std::string wholeRequestId(const std::string& named, Session& session) {
  if (isWholeId(named)) return named;
  return wholeRequestId(named, askStatus(session).requests);
}

}  // namespace corvane::ctl
