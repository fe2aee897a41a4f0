#include "corvanectl/report/PictureSource.h"

#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/commands/ResultOutput.h"

namespace corvane::ctl {

namespace {

ToolResult askFor(Session& session, const Report& report, std::size_t testIndex,
                  const AgentRunResult::Step& step) {
  AnyCodable::Object arguments{
      {"requestId", report.requestId}, {"includeStepTrace", true}, {"traceStepIndex", step.index}};
  if (report.tests[testIndex].trace) {
    arguments.set("traceTestIndex", static_cast<std::int64_t>(testIndex));
  }
  return ToolResult::from(session.callTool("get_result", std::move(arguments)));
}

/// The pictures among the blocks of an answer, the first of which is the result itself.
StepPictures picturesIn(ToolResult answer) {
  StepPictures found;
  AnswerTexts::StepCaption caption;
  std::string lastText;
  for (ToolResult::Block& block : answer.content) {
    if (&block == &answer.content.front()) continue;
    if (auto* text = std::get_if<ToolResult::Text>(&block)) {
      if (auto read = AnswerTexts::readStepCaption(text->text)) caption = *std::move(read);
      lastText = std::move(text->text);
    } else if (auto* image = std::get_if<ToolResult::Image>(&block)) {
      const std::size_t place = found.pictures.size();
      std::string moment = place < caption.moments.size() ? caption.moments[place] : "";
      found.pictures.push_back(
          {std::move(moment), std::move(image->mimeType), std::move(image->data)});
    }
  }
  if (found.pictures.empty()) found.remark = std::move(lastText);
  return found;
}

}  // namespace

bool mayHavePictures(const Report& report, const AgentRunResult::Test& test,
                     const AgentRunResult::Step& step) {
  const bool captured = test.trace || (report.trace && report.tests.size() == 1);
  return captured && outcomeOf(step) != Outcome::skipped;
}

StepPictures fetchPictures(Session& session, const Report& report, std::size_t testIndex,
                           const AgentRunResult::Step& step) {
  return picturesIn(askFor(session, report, testIndex, step));
}

void savePictures(const std::filesystem::path& folder, const Report& report, Session& session,
                  Console& console, PictureFiles& files) {
  for (std::size_t i = 0; i < report.tests.size(); ++i) {
    const AgentRunResult::Test& test = report.tests[i];
    ResultOutput output(console, test.testName, folder, nullptr);
    for (const AgentRunResult::Step& step : test.steps) {
      if (!isNotable(step) || !mayHavePictures(report, test, step)) continue;
      for (const ToolResult::Block& block : askFor(session, report, i, step).content) {
        std::string file;
        output.append(block, file);
        if (std::holds_alternative<ToolResult::Image>(block)) {
          files[{i, step.index}].push_back(std::move(file));
        }
      }
    }
  }
}

}  // namespace corvane::ctl
