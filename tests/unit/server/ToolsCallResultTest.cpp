#include "corvane_mcp/protocol/ToolsCallResult.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"
#include "tests/support/ErrorText.h"

namespace corvane {
namespace {

std::string refusal(std::string_view json) {
  return errorText<DecodeError>([&] { (void)AgentWire::decode<ToolsCallResult>(json); });
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
  EXPECT_EQ(refusal(R"({"content":[]})"), "isError: required");
  EXPECT_EQ(refusal(R"({"isError":false})"), "content: required");
  EXPECT_EQ(refusal(R"({"content":[{"type":"audio"}],"isError":false})"),
            "content[0].type: Unsupported content block type: audio");
  EXPECT_EQ(AgentWire::decode<ToolsCallResult>(R"({"content":[],"isError":true})").isError, true);
}

}  // namespace
}  // namespace corvane
