#include "corvane_mcp/protocol/JSONRPCRequest.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"
#include "tests/support/ErrorText.h"

namespace corvane {
namespace {

std::string refusal(std::string_view json) {
  return errorText<DecodeError>([&] { (void)AgentWire::decode<JSONRPCRequest>(json); });
}

TEST(JSONRPCRequestTest, ReadsAllMembers) {
  const auto request = AgentWire::decode<JSONRPCRequest>(
      R"({"params":[1],"method":"ping","id":7,"jsonrpc":"2.0","extra":{}})");
  EXPECT_EQ(request.jsonrpc, "2.0");
  EXPECT_EQ(request.id, JSONRPCID{7});
  EXPECT_EQ(request.method, "ping");
  EXPECT_EQ(request.params, AnyCodable(AnyCodable::Array{1}));
}

TEST(JSONRPCRequestTest, DoesNotCheckTheProtocolTag) {
  EXPECT_EQ(AgentWire::decode<JSONRPCRequest>(R"({"jsonrpc":"","method":"x"})").jsonrpc, "");
}

TEST(JSONRPCRequestTest, IsANotificationWithoutAnIdOrWithANullOne) {
  EXPECT_FALSE(AgentWire::decode<JSONRPCRequest>(R"({"jsonrpc":"2.0","method":"x"})").id);
  EXPECT_FALSE(AgentWire::decode<JSONRPCRequest>(R"({"id":null,"jsonrpc":"2.0","method":"x"})").id);
}

TEST(JSONRPCRequestTest, HasNoParamsWhenTheyAreNull) {
  EXPECT_FALSE(
      AgentWire::decode<JSONRPCRequest>(R"({"jsonrpc":"2.0","method":"x","params":null})").params);
  EXPECT_EQ(
      AgentWire::decode<JSONRPCRequest>(R"({"jsonrpc":"2.0","method":"x","params":false})").params,
      AnyCodable(false));
}

TEST(JSONRPCRequestTest, NamesWhatDoesNotFit) {
  EXPECT_EQ(refusal(R"({"method":"x"})"), "jsonrpc: required");
  EXPECT_EQ(refusal(R"({"jsonrpc":null,"method":"x"})"), "jsonrpc: expected a string");
  EXPECT_EQ(refusal(R"({"jsonrpc":"2.0"})"), "method: required");
  EXPECT_EQ(refusal(R"({"jsonrpc":"2.0","method":["x"]})"), "method: expected a string");
  EXPECT_EQ(refusal(R"({"jsonrpc":"2.0","id":1.5,"method":"x"})"),
            "id: JSON-RPC id must be string, integer, or null");
  EXPECT_EQ(refusal("[]"), "expected an object");
  EXPECT_EQ(refusal("null"), "expected an object");
}

TEST(JSONRPCRequestTest, IsWrittenWithSortedKeysAndWithoutWhatIsAbsent) {
  JSONRPCRequest request;
  request.jsonrpc = "2.0";
  request.method = "a/b";
  EXPECT_EQ(AgentWire::encode(request), R"({"jsonrpc":"2.0","method":"a/b"})");
  request.id = JSONRPCID{"x"};
  request.params = AnyCodable();
  EXPECT_EQ(AgentWire::encode(request),
            R"({"id":"x","jsonrpc":"2.0","method":"a/b","params":null})");
}

}  // namespace
}  // namespace corvane
