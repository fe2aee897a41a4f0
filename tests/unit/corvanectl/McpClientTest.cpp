#include "corvanectl/protocol/McpClient.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/JsonReader.h"
#include "FakeServerScript.h"

namespace corvane::testing {
namespace {

using namespace ctl;

constexpr Seconds ampleTimeout{30};

/// A client and the fake server it talks to.
class Conversation {
 public:
  explicit Conversation(const std::vector<std::string>& lines)
      : script(lines),
        server(FakeServerScript::program(), log, interruption),
        client(server, [this](std::string_view text) { warnings.emplace_back(text); }) {}

  AnyCodable list() { return client.request("tools/list", {}, after(ampleTimeout)); }

  template <class Error>
  std::string listError(Seconds timeout = ampleTimeout) {
    try {
      (void)client.request("tools/list", {}, after(timeout));
    } catch (const Error& error) {
      return error.what();
    }
    return "no error";
  }

  std::vector<std::string> warnings;
  FakeServerScript script;
  Interruption interruption;
  ServerLog log;
  ServerProcess server;
  McpClient client;
};

TEST(McpClient, GreetsTheServer) {
  Conversation talk(greeted({"expect tools/list", "result {}"}));
  talk.client.initialize(after(ampleTimeout));
  EXPECT_EQ(talk.list(), AnyCodable(AnyCodable::Object()));
  const std::vector<std::string> expected{
      R"({"id":1,"jsonrpc":"2.0","method":"initialize","params":{"capabilities":{},)"
      R"("clientInfo":{"name":"corvanectl","version":"0.2.0"},"protocolVersion":"2025-03-26"}})",
      R"({"jsonrpc":"2.0","method":"notifications/initialized"})",
      R"({"id":2,"jsonrpc":"2.0","method":"tools/list","params":{}})"};
  EXPECT_EQ(talk.script.received(), expected);
}

TEST(McpClient, RefusesAGreetingWithoutVersion) {
  Conversation talk({"expect initialize", "result {}"});
  EXPECT_THROW(talk.client.initialize(after(ampleTimeout)), ProtocolError);
}

TEST(McpClient, SendsArgumentsOnlyWhenThereAreAny) {
  Conversation talk({"expect tools/call", "result 1", "expect tools/call", "result 2"});
  EXPECT_EQ(talk.client.callTool("a", std::nullopt, after(ampleTimeout)), AnyCodable(1));
  EXPECT_EQ(talk.client.callTool("a", AnyCodable::Object(), after(ampleTimeout)), AnyCodable(2));
  const std::vector<std::string> expected{
      R"({"id":1,"jsonrpc":"2.0","method":"tools/call","params":{"name":"a"}})",
      R"({"id":2,"jsonrpc":"2.0","method":"tools/call","params":{"arguments":{},"name":"a"}})"};
  EXPECT_EQ(talk.script.received(), expected);
}

TEST(McpClient, ReportsARefusal) {
  Conversation talk({"expect tools/list", "error -32601 Method not found: tools/list"});
  EXPECT_EQ(talk.listError<RpcError>(),
            "the server refused tools/list: Method not found: tools/list (error -32601)");
}

TEST(McpClient, TakesAnErrorWithoutIdForItsOwn) {
  Conversation talk({"expect tools/list",
                     R"(say {"error":{"code":-32700,"message":"bad"},"id":null,"jsonrpc":"2.0"})"});
  EXPECT_EQ(talk.listError<RpcError>(), "the server refused tools/list: bad (error -32700)");
}

TEST(McpClient, PassesOverWhatIsNotItsAnswer) {
  Conversation talk({"expect tools/list", R"(say {"id":99,"jsonrpc":"2.0","result":"other"})",
                     R"(say {"id":"1","jsonrpc":"2.0","result":"other"})",
                     R"(say {"jsonrpc":"2.0","method":"notifications/message","params":{}})",
                     R"(say {"id":1,"jsonrpc":"2.0","method":"ping"})",
                     R"(say {"jsonrpc":"2.0","method":"notifications/progress","params":7})",
                     "result \"mine\""});
  EXPECT_EQ(talk.list(), AnyCodable("mine"));
  EXPECT_TRUE(talk.warnings.empty());
}

TEST(McpClient, WarnsOnceOfWhatIsNoMessage) {
  Conversation talk({"expect tools/list", "say ", "say Usage: server \033[1m", "say [1,2]",
                     "say {\"half\":", "result true"});
  EXPECT_EQ(talk.list(), AnyCodable(true));
  EXPECT_EQ(talk.warnings,
            (std::vector<std::string>{"passing over what is no message on the server's standard "
                                      "output: Usage: server \\u001b[1m"}));
}

TEST(McpClient, HandsOnTheProgressOfItsCallOnly) {
  const std::string notification =
      R"(say {"jsonrpc":"2.0","method":"notifications/progress","params":)";
  Conversation talk({"expect tools/call", "progress one",
                     notification + R"({"progressToken":77,"progress":1,"message":"another's"}})",
                     notification + R"({"progressToken":1,"progress":1}})", "progress two",
                     "result null"});
  std::vector<std::string> messages;
  EXPECT_EQ(talk.client.callTool("a", std::nullopt, after(ampleTimeout),
                                 [&](std::string_view text) { messages.emplace_back(text); }),
            AnyCodable());
  EXPECT_EQ(messages, (std::vector<std::string>{"one", "two"}));
  EXPECT_EQ(talk.script.received().front(),
            R"({"id":1,"jsonrpc":"2.0","method":"tools/call","params":)"
            R"({"_meta":{"progressToken":1},"name":"a"}})");
}

TEST(McpClient, GivesUpInTime) {
  Conversation talk({"expect tools/list", "hang"});
  EXPECT_EQ(talk.listError<NoAnswer>(Seconds(0.2)),
            "the server did not answer tools/list within 0.2 s");
}

TEST(McpClient, GivesUpInTimeOnAServerThatNeverStopsTalking) {
  Interruption interruption;
  ServerLog log;
  ServerProcess server("/usr/bin/yes", log, interruption);
  McpClient client(server, [](std::string_view) {});
  EXPECT_THROW((void)client.request("tools/list", {}, after(Seconds(0.2))), NoAnswer);
}

TEST(McpClient, TellsWhatTheServerLeftUnanswered) {
  Conversation talk({"expect tools/list", "exit 7"});
  EXPECT_EQ(talk.listError<ProtocolError>(),
            "the server ended with exit status 7 before it answered tools/list");
}

TEST(McpClient, AnswersAfterALateAnswer) {
  Conversation talk({"expect tools/list", "expect tools/list",
                     R"(say {"id":1,"jsonrpc":"2.0","result":"late"})", "result \"second\""});
  EXPECT_NE(talk.listError<NoAnswer>(Seconds(0.1)), "no error");
  EXPECT_EQ(talk.list(), AnyCodable("second"));
}

ToolResult toolResult(std::string_view json) {
  return ToolResult::from(readJson(json));
}

TEST(ToolResult, ReadsEveryKindOfBlock) {
  const auto result = toolResult(
      R"({"content":[{"type":"text","text":"a"},{"type":"image","data":"Zg==","mimeType":"image/png"},)"
      R"({"type":"audio","data":"x"}],"isError":true})");
  ASSERT_EQ(result.content.size(), 3U);
  EXPECT_EQ(std::get<ToolResult::Text>(result.content[0]).text, "a");
  const auto& image = std::get<ToolResult::Image>(result.content[1]);
  EXPECT_EQ(image.data, "Zg==");
  EXPECT_EQ(image.mimeType, "image/png");
  EXPECT_EQ(std::get<ToolResult::Other>(result.content[2]).type, "audio");
  EXPECT_TRUE(result.isError);
  EXPECT_EQ(result.firstText(), "a");
}

TEST(ToolResult, NeedsNoErrorFlagAndNoBlocks) {
  const auto result = toolResult(R"({"content":[]})");
  EXPECT_FALSE(result.isError);
  EXPECT_EQ(result.firstText(), "");
}

TEST(ToolResult, RefusesOtherForms) {
  for (const char* json :
       {"null", "{}", R"({"content":{}})", R"({"content":["x"]})", R"({"content":[{"text":"x"}]})",
        R"({"content":[{"type":"text"}]})", R"({"content":[{"type":"image","data":"x"}]})"}) {
    EXPECT_THROW((void)toolResult(json), ProtocolError) << json;
  }
}

TEST(ToolResult, NamesWhatABlockLacks) {
  try {
    (void)toolResult(R"({"content":[{"type":"image","data":"x"}]})");
    ADD_FAILURE() << "not refused";
  } catch (const ProtocolError& error) {
    EXPECT_STREQ(error.what(), "a block of the tool's answer has no text under 'mimeType'");
  }
}

}  // namespace
}  // namespace corvane::testing
