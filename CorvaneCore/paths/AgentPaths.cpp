#include "CorvaneCore/paths/AgentPaths.h"

#include "CorvaneCore/files/Files.h"

namespace corvane {

void AgentPaths::ensureAgentImportsDirectoryExists() const {
  ensureDirectoryExists(agentImportsDirectory());
}

void AgentPaths::ensureAgentRunRequestsDirectoryExists() const {
  ensureDirectoryExists(agentRunRequestsDirectory());
}

void AgentPaths::ensureAgentResultsDirectoryExists() const {
  ensureDirectoryExists(agentResultsDirectory());
}

void AgentPaths::ensureAgentMCPDirectoryExists() const {
  ensureDirectoryExists(agentMCPDirectory());
}

}  // namespace corvane
