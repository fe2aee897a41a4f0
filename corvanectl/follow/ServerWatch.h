#pragma once

#include <string>

#include "corvanectl/follow/RequestWatch.h"
#include "corvanectl/follow/RunPlan.h"
#include "corvanectl/protocol/McpClient.h"

namespace corvane::ctl {

/// Watches a request through the server's tools.
class ServerWatch final : public RequestWatch {
 public:
  /// How long the server may take beyond what it is asked to wait.
  struct Patience {
    Seconds answer;
    /// When following ends, and with it all patience but for the last answer's.
    Deadline end = never;
  };

  /// Which tests the request runs, where that is known.
  struct Run {
    std::string project;
    RunTarget target;
    /// Whether anybody wants to know how long they took earlier.
    bool measured = false;
  };

  /// `client` and `interruption` outlive this.
  ServerWatch(std::string requestId, std::optional<Run> run, McpClient& client,
              Interruption& interruption, Patience patience)
      : requestId(std::move(requestId)),
        run(std::move(run)),
        client(client),
        interruption(interruption),
        patience(patience) {}

  [[nodiscard]] RequestLook look(Seconds wait) override;
  /// How long tests took is told by the few runs that get_status still names; of a test's runs the
  /// last one counts.
  [[nodiscard]] std::optional<Expectation> expectation() override;
  [[nodiscard]] bool appIsRunning() override;
  [[nodiscard]] FollowTime now() override { return std::chrono::steady_clock::now(); }
  void pauseUntil(FollowTime moment) override { interruption.wait({}, moment); }

 private:
  [[nodiscard]] ToolResult ask(std::string_view tool, AnyCodable::Object arguments,
                               Seconds wait = Seconds(0));
  [[nodiscard]] TestDurations earlierDurations();

  std::string requestId;
  std::optional<Run> run;
  McpClient& client;
  Interruption& interruption;
  Patience patience;
};

}  // namespace corvane::ctl
