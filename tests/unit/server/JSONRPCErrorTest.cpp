#include "corvane_mcp/protocol/JSONRPCError.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"
#include "tests/support/ErrorText.h"

namespace corvane {
namespace {

TEST(JSONRPCErrorTest, IsThrownAndCaughtAsAnError) {
  const auto act = [] { throw JSONRPCError(JSONRPCError::methodNotFound, "Method not found: x"); };
  EXPECT_EQ(errorText<std::exception>(act), "Method not found: x");
}

TEST(JSONRPCErrorTest, WritesDataOnlyWhenThereIsSome) {
  JSONRPCError error(JSONRPCError::invalidParams, "m");
  EXPECT_EQ(AgentWire::encode(error), R"({"code":-32602,"message":"m"})");
  error.data = AnyCodable();
  EXPECT_EQ(AgentWire::encode(error), R"({"code":-32602,"data":null,"message":"m"})");
}

TEST(JSONRPCErrorTest, HasTheCodesOfTheProtocol) {
  EXPECT_EQ(JSONRPCError::parseError, -32700);
  EXPECT_EQ(JSONRPCError::methodNotFound, -32601);
  EXPECT_EQ(JSONRPCError::invalidParams, -32602);
  EXPECT_EQ(JSONRPCError::internalError, -32603);
}

}  // namespace
}  // namespace corvane
