#include "corvane_mcp/protocol/JsonRpc.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "corvane_mcp/protocol/RequestLine.h"
#include "tests/support/ErrorText.h"

namespace corvane::testing {
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
  EXPECT_EQ(echoed("1200e-2"), "12");
  EXPECT_EQ(echoed("-0"), "0");
  EXPECT_EQ(echoed("-0.0"), "0");
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
  for (const char* json : {"7.5", "9223372036854775808", "1e300", "9007199254740993.5", "1e-400",
                           "1.0000000000000000000001", "true", "[]", "[7]", "{}"}) {
    EXPECT_EQ(errorText<DecodeError>([&] { (void)AgentWire::decode<JSONRPCID>(json); }),
              "JSON-RPC id must be string, integer, or null")
        << json;
  }
}

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

/// The arguments that a line carries, as they came.
std::string argumentsOf(std::string_view line) {
  JsonReader reader;
  return readRequestLine(line, reader).arguments.value_or("none");
}

// Fails when arguments are made into values, or taken from elsewhere than the params.
TEST(RequestLineTest, KeepsArgumentsAsTheTextTheyAre) {
  EXPECT_EQ(argumentsOf(R"({"method":"m","params":{"arguments":{ "b" : [1.50], "a":"\u0041" }},)"
                        R"("jsonrpc":"2.0"})"),
            R"({ "b" : [1.50], "a":"\u0041" })");
  for (const char* value : {"null", "7", "\"x\"", "[]", "[1,[2]]", "{}"}) {
    EXPECT_EQ(argumentsOf(R"({"jsonrpc":"2.0","method":"m","params":{"name":"x","arguments":)" +
                          std::string(value) + "}}"),
              value);
  }
  EXPECT_EQ(argumentsOf(R"({"jsonrpc":"2.0","method":"m","params":{"argu\u006dents":1}})"), "1");
  for (const char* params : {"{}", "[]", "null", "7", R"([{"arguments":1}])",
                             R"({"name":{"arguments":1}})", R"({"Arguments":1})"}) {
    EXPECT_EQ(argumentsOf(R"({"jsonrpc":"2.0","method":"m","arguments":2,"params":)" +
                          std::string(params) + "}"),
              "none")
        << params;
  }
}

// Fails when arguments outlive the params that a later member of that name replaces.
TEST(RequestLineTest, OfSeveralTheLastCount) {
  const std::string begin = R"({"jsonrpc":"2.0","method":"m",)";
  EXPECT_EQ(argumentsOf(begin + R"("params":{"arguments":1,"arguments":2}})"), "2");
  EXPECT_EQ(argumentsOf(begin + R"("params":{"arguments":1},"params":{"arguments":2}})"), "2");
  EXPECT_EQ(argumentsOf(begin + R"("params":{"arguments":1},"params":{"name":"x"}})"), "none");
  EXPECT_EQ(argumentsOf(begin + R"("params":{"arguments":1},"params":null})"), "none");
}

TEST(RequestLineTest, LeavesTheRestOfTheRequestAsItIs) {
  JsonReader reader;
  const auto line = readRequestLine(
      R"({"id":"i","jsonrpc":"2.0","method":"m","params":{"_meta":{"progressToken":5},)"
      R"("arguments":{"a":1},"name":"x"}})",
      reader);
  EXPECT_EQ(line.request.method, "m");
  EXPECT_EQ(toJson(*line.request.params), R"({"_meta":{"progressToken":5},"name":"x"})");
}

// Fails when what is not made into a value is not checked.
TEST(RequestLineTest, ChecksArgumentsAsEverythingElse) {
  for (const char* arguments : {"", "{", "[1,]", "{\"a\"}", "01", "1e999", "tru", "\"\\x\""}) {
    const std::string line =
        R"({"jsonrpc":"2.0","method":"m","params":{"arguments":)" + std::string(arguments) + "}}";
    JsonReader reader;
    EXPECT_EQ(errorText<DecodeError>([&] { (void)readRequestLine(line, reader); }),
              errorText<DecodeError>([&] { (void)readJson(line); }))
        << line;
  }
}

}  // namespace
}  // namespace corvane::testing
