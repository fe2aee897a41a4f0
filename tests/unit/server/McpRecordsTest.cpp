#include "corvane_mcp/protocol/McpRecords.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"
#include "tests/support/ErrorText.h"

namespace corvane::testing {
namespace {

/// Why `json` is no Record.
template <class Record>
std::string refusal(std::string_view json) {
  return errorText<DecodeError>([&] { (void)AgentWire::decode<Record>(json); });
}

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

TEST(ToolsListResultTest, WritesSchemasAsTheyAre) {
  const ToolsListResult list{
      {{"t", "a/b",
        AnyCodable::Object{{"type", "object"}, {"x", AnyCodable::Array{true, 1, 0.5}}}}}};
  EXPECT_EQ(AgentWire::encode(list), R"({"tools":[{"description":"a/b","inputSchema":)"
                                     R"({"type":"object","x":[true,1,0.5]},"name":"t"}]})");
  EXPECT_EQ(AgentWire::encode(ToolsListResult()), R"({"tools":[]})");
}

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

TEST(ContentBlockTest, WritesItsKeysSorted) {
  EXPECT_EQ(AgentWire::encode(ContentBlock::text("a/b\n")), R"({"text":"a/b\n","type":"text"})");
  EXPECT_EQ(AgentWire::encode(ContentBlock::image("QUJD", "image/png")),
            R"({"data":"QUJD","mimeType":"image/png","type":"image"})");
}

TEST(ContentBlockTest, ReadsWhatItWrites) {
  const auto text = AgentWire::decode<ContentBlock>(R"({"type":"text","text":"x"})");
  EXPECT_EQ(std::get<ContentBlock::Text>(text.choice).text, "x");
  const auto image =
      AgentWire::decode<ContentBlock>(R"({"type":"image","data":"QQ==","mimeType":"image/jpeg"})");
  EXPECT_EQ(std::get<ContentBlock::Image>(image.choice).data, "QQ==");
  EXPECT_EQ(std::get<ContentBlock::Image>(image.choice).mimeType, "image/jpeg");
}

TEST(ContentBlockTest, RefusesOtherTypes) {
  EXPECT_EQ(refusal<ContentBlock>(R"({"type":"audio","data":""})"),
            "type: Unsupported content block type: audio");
  EXPECT_EQ(refusal<ContentBlock>(R"({"type":"of\ntwo lines","data":""})"),
            R"(type: Unsupported content block type: of\ntwo lines)");
  EXPECT_EQ(refusal<ContentBlock>(R"({"text":"x"})"), "type: required");
  EXPECT_EQ(refusal<ContentBlock>(R"({"type":"text"})"), "text: required");
  EXPECT_EQ(refusal<ContentBlock>(R"({"type":"image","data":"x"})"), "mimeType: required");
}

TEST(ToolsCallResultTest, AlwaysSaysWhetherItIsAnError) {
  EXPECT_EQ(AgentWire::encode(ToolsCallResult::success("x")),
            R"({"content":[{"text":"x","type":"text"}],"isError":false})");
  EXPECT_EQ(AgentWire::encode(ToolsCallResult::failure("x")),
            R"({"content":[{"text":"x","type":"text"}],"isError":true})");
  EXPECT_EQ(AgentWire::encode(ToolsCallResult()), R"({"content":[],"isError":false})");
}

TEST(ToolsCallResultTest, KeepsItsBlocksInOrder) {
  auto result = ToolsCallResult::success("first");
  result.content.push_back(ContentBlock::image("QQ==", "image/jpeg"));
  result.content.push_back(ContentBlock::text("last"));
  EXPECT_EQ(AgentWire::encode(result), R"({"content":[{"text":"first","type":"text"},)"
                                       R"({"data":"QQ==","mimeType":"image/jpeg","type":"image"},)"
                                       R"({"text":"last","type":"text"}],"isError":false})");
}

TEST(ToolsCallResultTest, NeedsBothFields) {
  EXPECT_EQ(refusal<ToolsCallResult>(R"({"content":[]})"), "isError: required");
  EXPECT_EQ(refusal<ToolsCallResult>(R"({"isError":false})"), "content: required");
  EXPECT_EQ(refusal<ToolsCallResult>(R"({"content":[{"type":"audio"}],"isError":false})"),
            "content[0].type: Unsupported content block type: audio");
  EXPECT_EQ(AgentWire::decode<ToolsCallResult>(R"({"content":[],"isError":true})").isError, true);
}

}  // namespace
}  // namespace corvane::testing
