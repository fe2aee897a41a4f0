#include "CorvaneCore/paths/AgentPaths.h"

#include "CorvaneCore/files/Files.h"

namespace corvane {

void AgentPaths::ensureAgentImportsDirectoryExists() const {
  ensure(agentImportsDirectory());
}

void AgentPaths::ensureAgentRunRequestsDirectoryExists() const {
  ensure(agentRunRequestsDirectory());
}

void AgentPaths::ensureAgentResultsDirectoryExists() const {
  ensure(agentResultsDirectory());
}

void AgentPaths::ensureAgentMCPDirectoryExists() const {
  ensure(agentMCPDirectory());
}

void AgentPaths::ensure(const std::filesystem::path& folder) const {
  // What closes this one to others closes all of them.
  ensureDirectoryExists(applicationSupport());
  ensureDirectoryExists(folder);
}

}  // namespace corvane
