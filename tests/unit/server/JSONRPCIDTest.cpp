#include "corvane_mcp/protocol/JSONRPCID.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"
#include "tests/support/ErrorText.h"

namespace corvane {
namespace {

std::string echoed(std::string_view json) {
  return AgentWire::encode(AgentWire::decode<JSONRPCID>(json));
}

TEST(JSONRPCIDTest, KeepsItsKind) {
  EXPECT_EQ(echoed("7"), "7");
  EXPECT_EQ(echoed("\"7\""), "\"7\"");
  EXPECT_EQ(echoed("null"), "null");
  EXPECT_EQ(echoed("\"\""), "\"\"");
}

TEST(JSONRPCIDTest, TakesWholeNumbersHoweverSpelled) {
  EXPECT_EQ(echoed("7.0"), "7");
  EXPECT_EQ(echoed("7e2"), "700");
  EXPECT_EQ(echoed("-0"), "0");
  EXPECT_EQ(echoed("9223372036854775807.0"), "9223372036854775807");
  EXPECT_EQ(echoed("-9223372036854775808"), "-9223372036854775808");
}

TEST(JSONRPCIDTest, HasItsCasesInOrder) {
  EXPECT_EQ(AgentWire::decode<JSONRPCID>("\"x\"").value.index(), 0U);
  EXPECT_EQ(AgentWire::decode<JSONRPCID>("1").value.index(), 1U);
  EXPECT_EQ(AgentWire::decode<JSONRPCID>("null").value.index(), 2U);
  EXPECT_EQ(JSONRPCID().value.index(), 2U);
}

TEST(JSONRPCIDTest, RefusesEverythingElse) {
  for (const char* json : {"7.5", "9223372036854775808", "1e300", "true", "[]", "[7]", "{}"}) {
    EXPECT_EQ(errorText<DecodeError>([&] { (void)AgentWire::decode<JSONRPCID>(json); }),
              "JSON-RPC id must be string, integer, or null")
        << json;
  }
}

}  // namespace
}  // namespace corvane
