#include "corvane_mcp/tools/Tools.h"

namespace corvane {

void registerTools(ToolRegistry& registry, const ToolServices& services) {
  registry.add(makeHealthTool(services));
  registry.add(makeListInteractionTypesTool());
  registry.add(makeCreateTestTool(services));
  registry.add(makeRunTestTool(services));
  registry.add(makeGetResultTool(services));
  registry.add(makeCancelRunTool(services));
  registry.add(makeDescribeProjectTool(services));
  registry.add(makeExploreFlowTool(services));
  registry.add(makeExtractUdiTool(services));
  registry.add(makeDeleteUdiTool(services));
  registry.add(makeResetWorldMapTool(services));
  registry.add(makeGetStatusTool(services));
}

}  // namespace corvane
