#include "corvane_mcp/protocol/JSONRPCResponse.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"

namespace corvane {
namespace {

TEST(JSONRPCResponseTest, CarriesAResultAndNoError) {
  EXPECT_EQ(AgentWire::encode(JSONRPCResponse::success({7}, AnyCodable::Object())),
            R"({"id":7,"jsonrpc":"2.0","result":{}})");
  // A null result is a result too.
  EXPECT_EQ(AgentWire::encode(JSONRPCResponse::success({"a"}, {})),
            R"({"id":"a","jsonrpc":"2.0","result":null})");
}

TEST(JSONRPCResponseTest, CarriesAnErrorAndNoResult) {
  EXPECT_EQ(AgentWire::encode(JSONRPCResponse::failure({}, {JSONRPCError::parseError, "bad"})),
            R"({"error":{"code":-32700,"message":"bad"},"id":null,"jsonrpc":"2.0"})");
}

TEST(JSONRPCResponseTest, ReadsWhatItWrites) {
  const auto response = AgentWire::decode<JSONRPCResponse>(
      R"({"error":{"code":1,"message":"m","data":[true]},"id":"x","jsonrpc":"2.0"})");
  EXPECT_EQ(response.id, JSONRPCID{"x"});
  EXPECT_FALSE(response.result);
  ASSERT_TRUE(response.error);
  EXPECT_EQ(response.error->code, 1);
  EXPECT_EQ(response.error->message, "m");
  EXPECT_EQ(response.error->data, AnyCodable(AnyCodable::Array{true}));
}

}  // namespace
}  // namespace corvane
