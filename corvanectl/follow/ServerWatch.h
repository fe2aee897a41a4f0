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

  /// `client` and `interruption` outlive this.
  ServerWatch(std::string requestId, McpClient& client, Interruption& interruption,
              Patience patience)
      : requestId(std::move(requestId)),
        client(client),
        interruption(interruption),
        patience(patience) {}

  [[nodiscard]] RequestLook look(Seconds wait) override;
  [[nodiscard]] bool appIsRunning() override;
  [[nodiscard]] FollowTime now() override { return std::chrono::steady_clock::now(); }
  void pauseUntil(FollowTime moment) override { interruption.wait({}, moment); }

 private:
  [[nodiscard]] Deadline answerDeadline(Seconds wait) const;

  std::string requestId;
  McpClient& client;
  Interruption& interruption;
  Patience patience;
};

/// How long the tests of a project took in the few runs that the server still tells of. A test
/// counts that went through all its steps, as it did the last time. Throws what McpClient::callTool
/// throws.
[[nodiscard]] TestDurations earlierDurations(McpClient& client, std::string_view projectName,
                                             Seconds patience);

}  // namespace corvane::ctl
