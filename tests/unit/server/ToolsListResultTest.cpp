#include "corvane_mcp/protocol/ToolsListResult.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"

namespace corvane {
namespace {

TEST(ToolsListResultTest, WritesSchemasAsTheyAre) {
  const ToolsListResult list{
      {{"t", "a/b",
        AnyCodable::Object{{"type", "object"}, {"x", AnyCodable::Array{true, 1, 0.5}}}}}};
  EXPECT_EQ(AgentWire::encode(list), R"({"tools":[{"description":"a/b","inputSchema":)"
                                     R"({"type":"object","x":[true,1,0.5]},"name":"t"}]})");
  EXPECT_EQ(AgentWire::encode(ToolsListResult()), R"({"tools":[]})");
}

}  // namespace
}  // namespace corvane
