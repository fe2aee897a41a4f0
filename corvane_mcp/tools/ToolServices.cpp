#include "corvane_mcp/tools/ToolServices.h"

#include "CorvaneCore/results/AnswerTexts.h"

namespace corvane {

std::string Dispatch::Launch::describe() const {
  std::string line = describeApp(app);
  return succeeded ? line : line.append(AnswerTexts::launchFailedRemark);
}

std::string Dispatch::describeApp(const std::optional<std::filesystem::path>& app) {
  return app ? displayPath(*app) : "<not found>";
}

Dispatch::Launch Dispatch::launchApp(const ToolServices& services) {
  const auto app = services.launcher.findCorvaneApp();
  if (!app) services.logger.warn("Could not locate Corvane.app to launch");
  return {app, app && services.launcher.ensureRunning(*app)};
}

void Dispatch::launchAppIfFound(const ToolServices& services) {
  if (services.launcher.isRunning()) return;
  if (const auto app = services.launcher.findCorvaneApp()) {
    (void)services.launcher.ensureRunning(*app);
  }
}

std::string Dispatch::getResultCall(std::string_view requestId, int waitSeconds) {
  return std::string("get_result {\"requestId\":\"").append(requestId) +
         "\",\"waitSeconds\":" + std::to_string(waitSeconds) + "}";
}

}  // namespace corvane
