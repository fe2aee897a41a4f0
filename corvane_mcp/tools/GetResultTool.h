#pragma once

#include "corvane_mcp/results/ResultFileStore.h"
#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Reports the state of any dispatched request, waiting for it to finish when asked to.
class GetResultTool final : public MCPTool {
 public:
  explicit GetResultTool(const ToolServices& services)
      : services(services), store(services.paths, services.clock) {}

  [[nodiscard]] std::string_view name() const override { return "get_result"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  [[nodiscard]] std::string snapshotHeader(const ResultFileStore::Snapshot& snapshot) const;

  ToolServices services;
  ResultFileStore store;
};

}  // namespace corvane
