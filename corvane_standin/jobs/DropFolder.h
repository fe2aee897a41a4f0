#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/paths/AgentPaths.h"
#include "CorvaneCore/requests/Requests.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/program/Ids.h"

namespace corvane::standin {

/// A request file that cannot be worked on, and why.
struct UnusableRequest {
  std::string reason;
  /// What the answer names as the tool that sent it.
  std::string_view source;
};

/// A request taken out of a drop folder.
struct DroppedRequest {
  /// In lower case.
  std::string id;
  /// Every kind of request that can be dropped has its alternative here.
  std::variant<AgentRunRequest, AgentExploreRequest, AgentLibraryRequest, AgentTestSchema,
               UnusableRequest>
      request;
};

/// The folders that the server drops request files, cancel markers and test payloads into. A file
/// is taken out before it is acted on: one that its sender withdraws first counts as never sent.
class DropFolder {
 public:
  struct Arrivals {
    /// In order of arrival: when they were made, then by name.
    std::vector<DroppedRequest> requests;
    /// The ids, in lower case, that cancel markers were dropped for.
    std::vector<std::string> cancelled;
  };

  /// For how many seconds a request is left where it is.
  using Delay = std::function<double(const DroppedRequest&)>;

  DropFolder(const AgentPaths& paths, const Clock& clock, const StandInLog& log, const Ids& ids,
             Delay delay)
      : paths(paths), clock(clock), log(log), ids(ids), delay(std::move(delay)) {}

  /// Takes out what lies in the folders now, but for requests whose delay is not over. A file that
  /// cannot be removed is handed out once and then passed over until it changes.
  [[nodiscard]] Arrivals take();

 private:
  enum class Removal { removed, wasGone, impossible };

  /// A request that is left where it is: since when, and for how long.
  struct Delayed {
    Stopwatch seen;
    double seconds;
  };

  [[nodiscard]] bool isPassedOver(const std::filesystem::path& file);
  /// Whether the request in `file` has yet to wait.
  [[nodiscard]] bool isDelayed(const std::filesystem::path& file) const;
  [[nodiscard]] bool isDelayed(const std::filesystem::path& file, const DroppedRequest& dropped);
  [[nodiscard]] Removal remove(const std::filesystem::path& file);
  template <class Request>
  void takeRequest(const std::filesystem::path& file, Arrivals& arrivals);
  void takeMarker(const std::filesystem::path& file, Arrivals& arrivals);

  const AgentPaths& paths;
  const Clock& clock;
  const StandInLog& log;
  const Ids& ids;
  Delay delay;
  std::map<std::filesystem::path, Delayed> delayed;
  /// Files that could not be removed, with the stamp they had.
  std::map<std::filesystem::path, std::optional<FileStamp>> passedOver;
};

}  // namespace corvane::standin
