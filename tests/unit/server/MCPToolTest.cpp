#include "corvane_mcp/server/MCPTool.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "corvane_mcp/tools/Tools.h"
#include "tests/support/ErrorText.h"
#include "tests/support/ToolBench.h"
#include "tests/unit/server/FakeTool.h"

namespace corvane::testing {
namespace {

MCPTool answering(std::string_view name, std::string answer) {
  return fakeTool(name, [answer = std::move(answer)](const ToolCall&) {
    return ToolsCallResult::success(answer);
  });
}

TEST(ToolRegistryTest, ListsToolsSortedByName) {
  ToolRegistry registry;
  for (const char* name : {"run_test", "a_b", "aB", "cancel", "a"})
    registry.add(answering(name, ""));
  std::vector<std::string> names;
  for (const auto& tool : registry.descriptors().tools) names.push_back(tool.name);
  EXPECT_EQ(names, (std::vector<std::string>{"a", "aB", "a_b", "cancel", "run_test"}));
}

TEST(ToolRegistryTest, PutsALaterToolInThePlaceOfAnEarlierOne) {
  ToolRegistry registry;
  registry.add(answering("x", "first"));
  registry.add(answering("x", "second"));
  EXPECT_EQ(registry.descriptors().tools.size(), 1U);
  EXPECT_EQ(textOf(runTask(registry.find("x").call({}))), "second");
}

TEST(ToolRegistryTest, FindsToolsByTheirExactName) {
  ToolRegistry registry;
  registry.add(answering("health", ""));
  for (const char* name : {"Health", "health ", "", "heal"}) {
    try {
      (void)registry.find(name);
      ADD_FAILURE() << name;
    } catch (const JSONRPCError& error) {
      EXPECT_EQ(error.code, JSONRPCError::invalidParams);
      EXPECT_EQ(error.message, std::string("Unknown tool: ") + name);
    }
  }
}

TEST(ToolRegistryTest, LetsThroughWhatAToolThrows) {
  ToolRegistry registry;
  registry.add(fakeTool(
      "plain", [](const ToolCall&) -> ToolsCallResult { throw std::runtime_error("broken"); }));
  registry.add(fakeTool("waiting", [](ToolCall) -> Task<ToolsCallResult> {
    throw std::runtime_error("broken");
    co_return ToolsCallResult();
  }));
  for (const char* name : {"plain", "waiting"}) {
    EXPECT_EQ(errorText<std::runtime_error>([&] { runTask(registry.find(name).call({})); }),
              "broken");
  }
}

TEST(ToolRegistryTest, HoldsToolsWhoseSchemasDescribeObjects) {
  ToolBench bench;
  ToolRegistry registry;
  registerTools(registry, bench.services);
  EXPECT_GE(registry.descriptors().tools.size(), 4U);
  for (const auto& tool : registry.descriptors().tools) {
    EXPECT_FALSE(tool.description.empty()) << tool.name;
    const auto* type = tool.inputSchema.findAs<std::string>("type");
    ASSERT_TRUE(type) << tool.name;
    EXPECT_EQ(*type, "object") << tool.name;
    EXPECT_TRUE(tool.inputSchema.findAs<JsonObject>("properties")) << tool.name;
  }
}

}  // namespace
}  // namespace corvane::testing
