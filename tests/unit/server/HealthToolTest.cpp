#include "corvane_mcp/tools/Tools.h"

#include <gtest/gtest.h>

#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

TEST(HealthToolTest, ShowsWhereEverythingLies) {
  ToolBench bench;
  const std::string home = bench.home.path();
  const auto text = [&](const std::string& app) {
    return "corvane-mcp is healthy.\n"
           "  Corvane.app:      " +
           app +
           "\n"
           "  AgentImports:     " +
           home +
           "/.local/share/Corvane/AgentImports\n"
           "  AgentRunRequests: " +
           home +
           "/.local/share/Corvane/AgentRunRequests\n"
           "  AgentResults:     " +
           home +
           "/.local/share/Corvane/AgentResults\n"
           "  MCP log file:     " +
           home + "/Library/Logs/Corvane/mcp.log";
  };
  const MCPTool tool = makeHealthTool(bench.services);
  for (const auto& arguments :
       {std::optional<std::string_view>(), std::optional<std::string_view>("[]"),
        std::optional<std::string_view>(R"({"x":1})")}) {
    const auto result = bench.call(tool, arguments);
    EXPECT_FALSE(result.isError);
    EXPECT_EQ(textOf(result), text("<not found>"));
  }
  std::filesystem::create_directories(home + "/Applications/Corvane.app");
  EXPECT_EQ(textOf(bench.call(tool, "{}")), text(home + "/Applications/Corvane.app"));
}

TEST(HealthToolTest, TakesNoArguments) {
  ToolBench bench;
  EXPECT_EQ(toJson(makeHealthTool(bench.services).inputSchema()),
            R"({"additionalProperties":false,"properties":{},"type":"object"})");
}

}  // namespace
}  // namespace corvane::testing
