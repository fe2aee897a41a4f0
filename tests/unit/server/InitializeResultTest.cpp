#include "corvane_mcp/protocol/InitializeResult.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"

namespace corvane {
namespace {

TEST(InitializeResultTest, IsWrittenWithSortedKeys) {
  const InitializeResult result{"2025-03-26", {ToolsCapability{}}, {"corvane-mcp", "0.2.0"}};
  EXPECT_EQ(AgentWire::encode(result),
            R"({"capabilities":{"tools":{"listChanged":false}},"protocolVersion":"2025-03-26",)"
            R"("serverInfo":{"name":"corvane-mcp","version":"0.2.0"}})");
}

TEST(InitializeResultTest, LeavesOutACapabilityThatIsAbsent) {
  EXPECT_EQ(AgentWire::encode(ServerCapabilities()), "{}");
  EXPECT_FALSE(AgentWire::decode<ServerCapabilities>("{}").tools);
}

TEST(InitializeResultTest, ReadsWhatItWrites) {
  const auto result = AgentWire::decode<InitializeResult>(
      R"({"capabilities":{"tools":{"listChanged":true}},"protocolVersion":"x",)"
      R"("serverInfo":{"name":"n","version":"v"}})");
  EXPECT_EQ(result.protocolVersion, "x");
  EXPECT_TRUE(result.capabilities.tools->listChanged);
  EXPECT_EQ(result.serverInfo.name, "n");
  EXPECT_EQ(result.serverInfo.version, "v");
}

}  // namespace
}  // namespace corvane
