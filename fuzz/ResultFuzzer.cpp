#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/tools/Tools.h"
#include "fuzz/Require.h"
#include "tests/support/ToolBench.h"

namespace {

using namespace corvane;
using namespace corvane::testing;

constexpr std::string_view requestId = "0a1b2c3d-0000-4000-8000-00000000abcd";

/// What a client adds to the request's id.
constexpr std::array<std::string_view, 3> calls{
    R"("waitSeconds":1)",
    R"("includeStepTrace":true)",
    R"("includeStepTrace":true,"traceTestIndex":0,"traceStepIndex":0)",
};

/// The file's text with every "@home" replaced, so that it can name a folder that exists.
std::string inHome(std::string text, const std::string& home) {
  constexpr std::string_view mark = "@home";
  for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += home.size()) {
    text.replace(at, mark.size(), home);
  }
  return text;
}

void checkAnswer(const ToolsCallResult& answer, const std::string& file) {
  require(!answer.content.empty(), "an answer has a block");
  const auto texts = textsOf(answer.content);
  for (const auto& text : texts) require(isValidUtf8(text), "texts are UTF-8");
  const std::string& first = texts.front();
  if (answer.isError) {
    const bool known = first.starts_with(file.empty() ? "error:unknown_request_id\n\n"
                                                      : "error:result_unreadable\n\n");
    require(known && texts.size() == 1, "a file that cannot be used is reported");
  } else {
    require(first.starts_with("status: ") && first.ends_with("\n\n" + file),
            "a result is shown as it stands in the file");
  }
  (void)readJson(AgentWire::encode(answer));
}

}  // namespace

/// The input is a result file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ToolBench bench;
  const std::string text =
      inHome(std::string(reinterpret_cast<const char*>(data), size), bench.home.path().string());
  TestFiles::write(AgentRunResult::fileURL(requestId, bench.paths), text);
  TestFiles::write(bench.home.path() / "session" / "session.json",
                   R"({"frames":[{"stepIndex":0,"status":"beforeStep","imageFileName":"a.png"}]})");
  const MCPTool tool = makeGetResultTool(bench.services);
  for (const auto& call : calls) {
    const std::string arguments =
        std::string(R"({"requestId":")").append(requestId).append("\",").append(call) + "}";
    checkAnswer(bench.call(tool, arguments), text);
  }
  return 0;
}
