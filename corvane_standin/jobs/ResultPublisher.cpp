#include "corvane_standin/jobs/ResultPublisher.h"

#include <utility>

namespace corvane::standin {

void ResultPublisher::publish(AgentRunResult result) const {
  result.updatedAt = clock.date();
  try {
    result.write(paths);
  } catch (const std::runtime_error& error) {
    log.warn(std::string("a result was not published: ") + error.what());
  }
}

void ResultPublisher::publishAgain(AgentRunResult result) const {
  if (fileExists(AgentRunResult::fileURL(result.requestId, paths))) publish(std::move(result));
}

void ResultPublisher::settleOrphans() const {
  for (const auto& file : listVisible(paths.agentResultsDirectory())) {
    if (file.extension() != ".json") continue;
    try {
      auto result = AgentRunResult::read(file);
      // The id decides where a result is written, so one that names another file is left alone.
      if (result.terminal || result.requestId != file.stem()) continue;
      result.setStatus(RunStatus::error);
      result.message = "Corvane quit before the run finished.";
      result.progress.reset();
      result.queuePosition.reset();
      log.info(result.requestId + ": settled as error, an earlier life left it unfinished");
      publish(std::move(result));
    } catch (const std::runtime_error& error) {
      log.warn("a result file is left as it is: " + std::string(error.what()));
    }
  }
}

}  // namespace corvane::standin
