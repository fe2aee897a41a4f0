#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/tools/Tools.h"
#include "corvane_mcp/workspace/PublishedContext.h"
#include "fuzz/Require.h"
#include "tests/support/ToolBench.h"

namespace {

using namespace corvane;
using namespace corvane::testing;

std::optional<AnyCodable> readObject(const std::string& text) {
  try {
    AnyCodable value = readJson(text);
    if (value.object()) return value;
  } catch (const DecodeError&) {
  }
  return std::nullopt;
}

bool isSame(const AnyCodable& kept, const AnyCodable* member) {
  return member ? kept == *member : kept.isNull();
}

/// What is kept of a context must be what the whole document says.
void checkReduction(const PublishedContext& context, const AnyCodable& document) {
  std::vector<const AnyCodable*> projects;
  if (const auto* array = document.findAs<AnyCodable::Array>("projects")) {
    for (const auto& element : *array) {
      if (element.object()) projects.push_back(&element);
    }
  }
  require(context.projects().size() == projects.size(), "every project is listed");
  for (std::size_t i = 0; i < projects.size(); ++i) {
    const auto& listed = context.projects()[i];
    const auto* tests = projects[i]->findAs<AnyCodable::Array>("tests");
    require(context.whole(listed) == *projects[i], "a project is found again, whole");
    require(isSame(listed.name, projects[i]->find("name")), "a project keeps its name");
    require(isSame(listed.platform, projects[i]->find("platform")), "and its platform");
    require(listed.testCount == static_cast<std::int64_t>(tests ? tests->size() : 0),
            "a project's tests are counted");
  }
  for (const auto& [key, value] : context.members()) {
    const AnyCodable* member = document.find(key);
    require(member && *member == value, "other members are kept");
  }
}

void checkAnswer(const ToolsCallResult& answer, bool isError) {
  require(answer.content.size() == 1 && answer.isError == isError, "one block, and no false alarm");
  const std::string text = textOf(answer);
  require(isValidUtf8(text), "texts are UTF-8");
  // What follows the last empty line is for programs.
  if (!isError) (void)readJson(std::string_view(text).substr(text.rfind("\n\n") + 2));
}

}  // namespace

/// The input is a file that the app publishes: its context, and its activity and a result as well.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  ToolBench bench;
  TestFiles::write(bench.paths.agentContextFile(), text);
  TestFiles::write(bench.paths.agentActivityFile(), text);
  TestFiles::write(bench.paths.agentResultsDirectory() / "r.json", text);
  const auto context = PublishedContext::read(bench.paths.agentContextFile());
  const auto document = readObject(text);
  require(context.has_value() == document.has_value(), "every object is a context");
  if (document) checkReduction(*context, *document);
  checkAnswer(bench.call(makeDescribeProjectTool(bench.services), std::nullopt), !context);
  checkAnswer(bench.call(makeGetStatusTool(bench.services), std::nullopt), false);
  return 0;
}
