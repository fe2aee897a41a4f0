#include "corvane_mcp/tools/Tools.h"

#include "corvane_mcp/tools/CancelRunTool.h"
#include "corvane_mcp/tools/GetResultTool.h"
#include "corvane_mcp/tools/HealthTool.h"
#include "corvane_mcp/tools/RunTestTool.h"

namespace corvane {

void registerTools(ToolRegistry& registry, const ToolServices& services) {
  registry.add(std::make_unique<HealthTool>(services));
  registry.add(std::make_unique<RunTestTool>(services));
  registry.add(std::make_unique<GetResultTool>(services));
  registry.add(std::make_unique<CancelRunTool>(services));
}

}  // namespace corvane
