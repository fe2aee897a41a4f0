#include "corvanectl/commands/ShowCommand.h"

#include <algorithm>

#include "corvanectl/answers/RequestAnswer.h"
#include "corvanectl/answers/RequestIds.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/commands/ResultOutput.h"
#include "corvanectl/results/RequestResult.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

using AnswerTexts::Standing;
using Step = AgentRunResult::Step;
using Test = AgentRunResult::Test;

constexpr std::string_view examples =
    R"(  corvanectl show                       the most recent request
  corvanectl show 3f2a --test 1         one test of it, with every step
  corvanectl show last --step 4 --pictures shots
)";

/// What a person can make of a request that has not ended; empty for one that goes its way.
std::string advice(const RequestAnswer& answer, const std::string& id) {
  switch (answer.standing.value_or(Standing::inProgress)) {
    case Standing::pending:
      return "Nobody has picked it up yet. Is Corvane.app running? 'corvanectl doctor' looks.\n";
    case Standing::stale:
      return "Corvane.app runs, but this request does not move. 'corvanectl cancel " + id +
             "' gives it up.\n";
    case Standing::appNotRunning:
      return "Corvane.app is not running, so this request will not go on. When the app starts, it "
             "ends it as an error.\n";
    default:
      return "It goes on; 'corvanectl follow " + id + "' watches it.\n";
  }
}

std::string stepLine(const Step& step) {
  const bool healed = isHealed(step) && step.status != "failed";
  std::string line = "step " + std::to_string(step.index) + " " + (healed ? "healed" : step.status);
  if (step.durationSeconds) line += " " + displaySeconds(*step.durationSeconds);
  line += " " + step.title;
  if (!step.description.empty()) line += ": " + step.description;
  std::string text = "    " + oneLine(line) + "\n";
  if (step.failureReason) text += "      " + oneLine(*step.failureReason) + "\n";
  return text;
}

std::string testLine(const Test& test, std::size_t index) {
  return "test " + std::to_string(index) + "  " + oneLine(test.status) + "  " +
         oneLine(test.testName) + "  (" + displaySeconds(test.durationSeconds) + ")\n";
}

[[noreturn]] void refuseNumber(std::string_view option, std::int64_t given, std::size_t count,
                               std::string_view what) {
  const std::string text = std::string(option) + ": there is no " + std::string(what) + " " +
                           std::to_string(given) + "; ";
  if (count == 0) throw UsageError(text + "the result names none");
  throw UsageError(text + "the result has " + std::to_string(count) + ", numbered from 0");
}

/// The test that tells most: the first that did not pass, else the last, as the server chooses its
/// pictures.
std::size_t mostTelling(const std::vector<Test>& tests) {
  const auto failed = std::find_if(tests.begin(), tests.end(),
                                   [](const Test& test) { return test.status != "passed"; });
  return failed == tests.end() ? tests.size() - 1
                               : static_cast<std::size_t>(failed - tests.begin());
}

/// The test and step that are meant, found in the result.
struct Choice {
  const Test* test = nullptr;
  std::size_t testIndex = 0;
  const Step* step = nullptr;

  Choice(const ShowCommand& command, const RequestAnswer& answer) {
    if (!command.test && !command.step) return;
    static const std::vector<Test> none;
    const auto& tests = answer.result && answer.result->tests ? *answer.result->tests : none;
    const std::int64_t wanted = command.test.value_or(0);
    if (tests.empty() || wanted < 0 || static_cast<std::size_t>(wanted) >= tests.size()) {
      refuseNumber(command.test ? "--test" : "--step", command.test ? wanted : *command.step,
                   command.test ? tests.size() : 0, command.test ? "test" : "step");
    }
    testIndex = command.test ? static_cast<std::size_t>(wanted) : mostTelling(tests);
    test = &tests[testIndex];
    if (!command.step) return;
    const auto found = std::find_if(test->steps.begin(), test->steps.end(),
                                    [&](const Step& each) { return each.index == *command.step; });
    if (found == test->steps.end()) {
      refuseNumber("--step", *command.step, test->steps.size(), "step");
    }
    step = &*found;
  }

  /// What its pictures are named for: the test that they are of.
  [[nodiscard]] std::string subject(const RequestAnswer& answer) const {
    if (test) return test->testName;
    const auto& tests = answer.result ? answer.result->tests : std::nullopt;
    return tests && !tests->empty() ? (*tests)[mostTelling(*tests)].testName : "get_result";
  }

  /// The pictures that belong to it.
  [[nodiscard]] PictureChoice pictures() const {
    PictureChoice choice;
    // A result without traces of its own for each test has one for the whole run.
    if (test && test->trace) choice.test = static_cast<std::int64_t>(testIndex);
    if (step) choice.step = step->index;
    return choice;
  }
};

std::string describe(const Choice& choice, const RequestAnswer& answer) {
  if (!choice.test) {
    std::string text = answer.json.empty() ? oneLine(answer.status) + "\n"
                                           : summarizeResult(answer.json, answer.status);
    const bool several = answer.result && answer.result->tests && answer.result->tests->size() > 1;
    if (several) text += "Tests count from 0: --test 0 shows every step of the first.\n";
    return text;
  }
  std::string text = testLine(*choice.test, choice.testIndex);
  if (choice.step) return text + stepLine(*choice.step);
  for (const Step& step : choice.test->steps) text += stepLine(step);
  return text;
}

}  // namespace

Command::About ShowCommand::about() const {
  return {"show", "Show how a request stands or went, or one test or step of it", examples};
}

void ShowCommand::addOptions(CLI::App& app) {
  addOptionalRequestId(app, request);
  app.add_option("--test", test, "Show this test with all its steps; tests count from 0")
      ->type_name("N")
      ->check(numberFrom0());
  app.add_option("--step", step,
                 "Show this step, with its pictures; steps count from 0, in the test named or else "
                 "in the one that did not pass")
      ->type_name("N")
      ->check(numberFrom0());
  addPictures(app, pictures);
  addJson(app, json, "Print the result as JSON");
}

ExitStatus ShowCommand::execute(CommandContext& context) const {
  Session session(context);
  const std::string id = wholeRequestId(request, session);
  const RequestAnswer answer = askRequest(session, id);
  if (json) {
    context.console.print(answer.json.empty() ? "null\n" : answer.json);
    if (!answer.json.empty() && !answer.json.ends_with('\n')) context.console.print("\n");
    return ExitStatus::success;
  }
  const Choice choice(*this, answer);
  context.console.print(oneLine(id) + "\n" + describe(choice, answer));
  if (!answer.hasEnded()) context.console.print(advice(answer, id));
  if (!step && !pictures) return ExitStatus::success;

  ResultOutput output(context.console, choice.subject(answer), pictures, &context.pictureViewer);
  for (const auto& block : askRequest(session, id, choice.pictures()).further) {
    std::string line;
    output.append(block, line);
    context.console.print(line + "\n");
  }
  return ExitStatus::success;
}

}  // namespace corvane::ctl
