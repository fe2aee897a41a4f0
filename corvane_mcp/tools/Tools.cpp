#include "corvane_mcp/tools/Tools.h"

#include "corvane_mcp/tools/CancelRunTool.h"
#include "corvane_mcp/tools/CreateTestTool.h"
#include "corvane_mcp/tools/DeleteUdiTool.h"
#include "corvane_mcp/tools/DescribeProjectTool.h"
#include "corvane_mcp/tools/ExploreFlowTool.h"
#include "corvane_mcp/tools/ExtractUdiTool.h"
#include "corvane_mcp/tools/GetResultTool.h"
#include "corvane_mcp/tools/GetStatusTool.h"
#include "corvane_mcp/tools/HealthTool.h"
#include "corvane_mcp/tools/ListInteractionTypesTool.h"
#include "corvane_mcp/tools/ResetWorldMapTool.h"
#include "corvane_mcp/tools/RunTestTool.h"

namespace corvane {

void registerTools(ToolRegistry& registry, const ToolServices& services) {
  registry.add(std::make_unique<HealthTool>(services));
  registry.add(std::make_unique<ListInteractionTypesTool>());
  registry.add(std::make_unique<CreateTestTool>(services));
  registry.add(std::make_unique<RunTestTool>(services));
  registry.add(std::make_unique<GetResultTool>(services));
  registry.add(std::make_unique<CancelRunTool>(services));
  registry.add(std::make_unique<DescribeProjectTool>(services));
  registry.add(std::make_unique<ExploreFlowTool>(services));
  registry.add(std::make_unique<ExtractUdiTool>(services));
  registry.add(std::make_unique<DeleteUdiTool>(services));
  registry.add(std::make_unique<ResetWorldMapTool>(services));
  registry.add(std::make_unique<GetStatusTool>(services));
}

}  // namespace corvane
