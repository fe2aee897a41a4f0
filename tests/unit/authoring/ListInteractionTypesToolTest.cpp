#include "corvane_mcp/tools/Tools.h"

#include <gtest/gtest.h>

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "tests/support/ToolBench.h"
#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

/// The text that the tool answers to these arguments, a JSON text, or to none.
std::string answer(std::optional<std::string_view> arguments = std::nullopt) {
  ToolCall call;
  if (arguments) call.arguments = *arguments;
  const auto result = runTask(makeListInteractionTypesTool().call(std::move(call)));
  EXPECT_FALSE(result.isError);
  return textOf(result);
}

TEST(ListInteractionTypesToolTest, WithoutATypeItServesTheWholeContract) {
  const std::string whole = AuthoringContract::fullMarkdown();
  EXPECT_EQ(answer(), whole);
  for (const char* arguments : {"{}", R"({"type":null})", R"({"type":7})", R"({"type":["tap"]})",
                                R"({"kind":"tap"})", "null", "[]", R"("tap")"}) {
    EXPECT_EQ(answer(arguments), whole) << arguments;
  }
}

TEST(ListInteractionTypesToolTest, WithATypeItServesItsHint) {
  for (const auto& row : Vocabulary<InteractionType>::rows) {
    EXPECT_EQ(answer(R"({"type":")" + std::string(row.rawValue) + R"("})"),
              AuthoringContract::guidance(row.value));
  }
  EXPECT_EQ(answer(R"({"type":"tap"})"), "(no extra guidance — see create_test.inputSchema)");
}

TEST(ListInteractionTypesToolTest, AnUnknownTypeHasNoHint) {
  for (const char* type : {"Tap", "swipe", ""}) {
    EXPECT_EQ(answer(R"({"type":")" + std::string(type) + R"("})"),
              "(no extra guidance — see create_test.inputSchema)");
  }
}

TEST(ListInteractionTypesToolTest, TheSchemaListsTheTypes) {
  EXPECT_EQ(
      toJson(makeListInteractionTypesTool().inputSchema()),
      R"({"additionalProperties":false,"properties":{"type":{"description":"Optional. Return the )"
      R"(guidance for this interaction type only. Omit it for the whole contract.","enum":[")" +
          Payloads::listed(Payloads::allTypes, "\",\"") +
          R"("],"type":"string"}},"type":"object"})");
}

}  // namespace
}  // namespace corvane::testing
