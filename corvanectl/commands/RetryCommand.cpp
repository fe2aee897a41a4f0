#include "corvanectl/commands/RetryCommand.h"

#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/json/Vocabulary.h"
#include "corvanectl/answers/RequestAnswer.h"
#include "corvanectl/answers/RequestIds.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/results/RequestResult.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view examples =
    R"(  corvanectl retry --failed --follow     what failed in the most recent run
  corvanectl retry 3f2a --param username=me@example.com
)";

/// The tests of a finished run that are to run again. Throws UsageError when its result does not
/// tell.
std::vector<std::string> testsOf(const RequestAnswer& answer, const std::string& id,
                                 bool failedOnly) {
  if (!answer.hasEnded()) {
    throw UsageError("the request " + id + " has not ended ('corvanectl show " + id +
                     "' tells how it stands); only what has ended can be run again");
  }
  const auto& result = answer.result;
  if (!result || !result->projectName || !result->tests || result->tests->empty()) {
    throw UsageError("the result of " + id +
                     " names no tests that ran, so what to run again is not known; "
                     "'corvanectl run' takes the names");
  }
  std::vector<std::string> names;
  for (const auto& test : *result->tests) {
    if (!failedOnly || test.status != "passed") names.push_back(test.testName);
  }
  return names;
}

/// What the result does not tell of the run and so cannot be done again.
std::string unknownRemark(const AgentRunResult& result) {
  std::string text;
  if (result.status == "cancelled" || result.status == "error" || result.status == "blocked") {
    text =
        "The run did not come to its end; tests that it had not begun are not named in its "
        "result and do not run now.\n";
  }
  return text +
         "Values for placeholders, --build, --no-build and --udid of the first run are not in its "
         "result; what is not given now is left to the project.\n";
}

/// Ends as the request did: what has not come to its end is not well because no test failed.
ExitStatus tellNothingFailed(const RequestAnswer& answer, const std::string& id, Console& console) {
  const ExitStatus status = exitStatusOf(answer.status);
  if (status == ExitStatus::success) {
    console.print("No test of " + id + " failed; there is nothing to run again.\n");
  } else {
    console.complain("no test of " + id + " failed, but its status is " + answer.status +
                     "; 'corvanectl run' runs the tests that it had not begun");
  }
  return status;
}

}  // namespace

Command::About RetryCommand::about() const {
  return {"retry", "Run the tests of a finished request again", examples};
}

void RetryCommand::addOptions(CLI::App& app) {
  addOptionalRequestId(app, request);
  app.add_flag("--failed", failedOnly, "Only the tests that did not pass");
  run.addRunOptions(app);
}

ExitStatus RetryCommand::execute(CommandContext& context) const {
  RunCommand again = run;
  {
    Session session(context);
    const std::string id = wholeRequestId(request, session);
    const RequestAnswer answer = askRequest(session, id);
    again.tests = testsOf(answer, id, failedOnly);
    if (again.tests.empty()) return tellNothingFailed(answer, id, context.console);
    again.project = *answer.result->projectName;
    const auto& platform = answer.result->platform;
    if (!again.platform && platform && fromRawValue<AgentTargetPlatform>(*platform)) {
      again.platform = platform;
    }
    context.console.printError(unknownRemark(*answer.result));
  }
  return again.execute(context);
}

}  // namespace corvane::ctl
