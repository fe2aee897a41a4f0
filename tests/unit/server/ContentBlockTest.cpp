#include "corvane_mcp/protocol/ContentBlock.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AgentWire.h"
#include "tests/support/ErrorText.h"

namespace corvane {
namespace {

std::string refusal(std::string_view json) {
  return errorText<DecodeError>([&] { (void)AgentWire::decode<ContentBlock>(json); });
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
  EXPECT_EQ(refusal(R"({"type":"audio","data":""})"),
            "type: Unsupported content block type: audio");
  EXPECT_EQ(refusal(R"({"type":"of\ntwo lines","data":""})"),
            R"(type: Unsupported content block type: of\ntwo lines)");
  EXPECT_EQ(refusal(R"({"text":"x"})"), "type: required");
  EXPECT_EQ(refusal(R"({"type":"text"})"), "text: required");
  EXPECT_EQ(refusal(R"({"type":"image","data":"x"})"), "mimeType: required");
}

}  // namespace
}  // namespace corvane
