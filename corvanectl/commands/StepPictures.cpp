#include "corvanectl/commands/StepPictures.h"

#include <algorithm>
#include <optional>
#include <ranges>
#include <span>
#include <utility>

#include "CorvaneCore/text/Base64.h"
#include "corvanectl/commands/ResultOutput.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view tool = "get_result";

using Tests = std::vector<AgentRunResult::Test>;

/// The test whose pictures are the first to look at: one that failed, else the last. Nothing when
/// the result names no pictures by test.
std::optional<std::size_t> tracedTest(const Tests& tests) {
  std::optional<std::size_t> traced;
  for (std::size_t i = 0; i < tests.size(); ++i) {
    if (!tests[i].trace) continue;
    traced = i;
    if (tests[i].status == "failed") break;
  }
  return traced;
}

/// What stands for the traced test in the names of files.
std::string subjectOf(const Tests& tests, std::optional<std::size_t> traced) {
  if (traced) return tests[*traced].testName;
  return tests.size() == 1 ? tests.front().testName : std::string(tool);
}

void save(std::span<const ToolResult::Block> blocks, std::string subject,
          const FollowOptions& options, CommandContext& context) {
  const bool withResults = !options.json && !options.events;
  // Beside JSON, pictures would be among the messages.
  ResultOutput output(context.console, std::move(subject), options.pictures,
                      withResults ? &context.pictureViewer : nullptr);
  for (const ToolResult::Block& block : blocks) {
    std::string line;
    output.append(block, line);
    line += '\n';
    withResults ? context.console.print(line) : context.console.printError(line);
  }
}

/// Shows the last picture, which is of what a step has left.
void showLast(std::span<const ToolResult::Block> blocks, CommandContext& context) {
  for (const ToolResult::Block& block : blocks | std::views::reverse) {
    const auto* image = std::get_if<ToolResult::Image>(&block);
    const auto bytes = image ? decodeBase64(image->data) : std::nullopt;
    if (!bytes) continue;
    context.console.print("What the failed step has left on the screen:\n");
    context.pictureViewer.showBytes(*bytes);
    return;
  }
}

}  // namespace

void showStepPictures(const std::string& requestId, const RequestLook& look,
                      const FollowOptions& options, Session& session, CommandContext& context) {
  const bool shows = look.status == "failed" && !options.json && !options.events &&
                     usesColor(options.color, context.console.standardOutput()) &&
                     context.pictureViewer.canShow();
  if (!options.pictures && !shows) return;

  const Tests tests = look.result ? look.result->tests.value_or(Tests()) : Tests();
  const auto traced = tracedTest(tests);
  AnyCodable::Object arguments{{"requestId", requestId}, {"includeStepTrace", true}};
  if (traced) arguments.set("traceTestIndex", static_cast<std::int64_t>(*traced));
  const auto result = ToolResult::from(session.callTool(tool, std::move(arguments)));
  // The answer repeats what is known and adds the blocks to show.
  const auto blocks =
      std::span(result.content).subspan(std::min(look.blockCount, result.content.size()));
  if (options.pictures) {
    save(blocks, subjectOf(tests, traced), options, context);
  } else {
    showLast(blocks, context);
  }
}

}  // namespace corvane::ctl
