#include "corvane_mcp/protocol/ToolsCallParams.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"
#include "tests/support/ErrorText.h"

namespace corvane {
namespace {

TEST(ToolsCallParamsTest, HasNoArgumentsWhenNoneOrNullAreGiven) {
  EXPECT_FALSE(AgentWire::decode<ToolsCallParams>(R"({"name":"health"})").arguments);
  EXPECT_FALSE(
      AgentWire::decode<ToolsCallParams>(R"({"name":"health","arguments":null})").arguments);
}

TEST(ToolsCallParamsTest, HandsArgumentsOnAsTheyCame) {
  const auto params = AgentWire::decode<ToolsCallParams>(
      R"({"_meta":{"progressToken":1},"name":"x","arguments":[1,1.5,{"a":true}]})");
  EXPECT_EQ(params.name, "x");
  EXPECT_EQ(params.arguments,
            AnyCodable(AnyCodable::Array{1, 1.5, AnyCodable::Object{{"a", true}}}));
}

TEST(ToolsCallParamsTest, NeedsAName) {
  EXPECT_EQ(errorText<DecodeError>([] {
              (void)decodeValue<ToolsCallParams>(readJson(R"({"arguments":{}})"), "params");
            }),
            "params.name: required");
}

}  // namespace
}  // namespace corvane
