#include "corvanectl/commands/RunCommand.h"

#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/answers/ProjectAnswer.h"
#include "corvanectl/commands/Following.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/follow/FollowWords.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view examples = R"(  corvanectl run Shop --test Login Checkout --follow
  corvanectl run Shop --suite Smoke --platform android
  corvanectl run Shop --all --param username=me@example.com --no-build
)";

std::vector<std::string> platforms() {
  const auto& rows = Vocabulary<AgentTargetPlatform>::rows;
  std::vector<std::string> names;
  names.reserve(rows.size());
  for (const auto& row : rows) names.emplace_back(row.rawValue);
  return names;
}

/// The name and the value of KEY=VALUE.
std::pair<std::string, std::string> splitParam(const std::string& text) {
  const std::size_t equals = text.find('=');
  return {text.substr(0, equals), text.substr(equals + 1)};
}

/// Tells what became of the dispatch, and the request's id, as soon as it is known.
void tellDispatch(const RunCommand& command, const AnyCodable& answer, const ToolResult& result,
                  const std::optional<std::string>& requestId, Console& console) {
  const bool goesOn = command.follow && !result.isError;
  if (command.options.json) {
    if (requestId) console.printError("requestId: " + *requestId + "\n");
    if (!goesOn) console.print(toJson(answer) + "\n");
    return;
  }
  if (command.options.events && goesOn) return;
  // How an agent goes on is nothing to a person.
  std::string text = cleanLines(AnswerTexts::withoutNextCall(result.firstText())) + "\n";
  if (goesOn) text += '\n';
  if (!goesOn && requestId) text += "\nNext: corvanectl follow " + *requestId + "\n";
  console.print(text);
}

}  // namespace

AnyCodable::Object runArguments(const RunCommand& command) {
  AnyCodable::Object arguments{{"projectName", command.project}};
  if (!command.tests.empty()) arguments.set("testNames", command.tests);
  if (command.suite) arguments.set("suiteName", *command.suite);
  if (command.all) arguments.set("runAll", true);
  AnyCodable::Object params;
  for (const auto& [name, value] : command.params) params.set(name, value);
  if (!params.empty()) arguments.set("params", std::move(params));
  if (command.build) arguments.set("buildFirst", *command.build);
  if (command.platform) arguments.set("targetPlatform", *command.platform);
  if (command.udid) arguments.set("simulatorUDID", *command.udid);
  return arguments;
}

Command::About RunCommand::about() const {
  return {"run", "Run tests that exist in a project", examples};
}

void RunCommand::addOptions(CLI::App& app) {
  app.add_option("PROJECT", project, "The project's exact name")->type_name("")->required();
  takeMany(app.add_option("--test", tests, "Run these tests, by exact name"), "TEST");
  app.add_option("--suite", suite, "Run every test of this suite")->type_name("SUITE");
  app.add_flag("--all", all, "Run every test of the project");
  addRunOptions(app);
}

void RunCommand::addRunOptions(CLI::App& app) {
  takeMany(app.add_option_function<std::vector<std::string>>(
                  "--param",
                  [this](const std::vector<std::string>& given) {
                    for (const auto& text : given) params.push_back(splitParam(text));
                  },
                  "Values for the $placeholders of the tests")
               ->check(keyAndValue()),
           "KEY=VALUE");
  auto* withBuild = app.add_flag_callback(
      "--build", [this] { build = true; }, "Build first, whatever the project says");
  app.add_flag_callback(
         "--no-build", [this] { build = false; }, "Run what is already on the device")
      ->excludes(withBuild);
  app.add_option("--platform", platform, "The platform to run on (default: the project's)")
      ->type_name(joinedRawValues<AgentTargetPlatform>("|"))
      ->transform(oneOf(platforms()));
  app.add_option("--udid", udid, "The iOS simulator to run on")->type_name("UDID");
  app.add_flag("--follow", follow, "Wait for the run and show how it went");
  app.add_flag("--unchecked", unchecked, "Run whether or not the workspace has these names");
  addJson(app, options.json, "Print the result as JSON");
  options.addTo(app, "--follow");
}

void RunCommand::check() const {
  const int targets = (tests.empty() ? 0 : 1) + (suite ? 1 : 0) + (all ? 1 : 0);
  if (targets != 1) throw CLI::RequiredError("Exactly one of --test, --suite and --all");
}

ExitStatus RunCommand::execute(CommandContext& context) const {
  options.checkOutputs();
  const Deadline end = FollowOptions::end(context.options);
  Session session(context);
  if (!unchecked) checkNames(session, project, tests, suite);
  removeOldReports(options.reports);
  const AnyCodable answer = session.callTool("run_test", runArguments(*this));
  const ToolResult result = ToolResult::from(answer);
  const auto requestId = AnswerTexts::readRequestId(result.firstText());
  tellDispatch(*this, answer, result, requestId, context.console);
  if (result.isError) return ExitStatus::failure;
  const bool launched = !AnswerTexts::readLaunchFailed(result.firstText());
  if (!launched) context.console.complain("Corvane.app could not be started; open it yourself");
  if (follow) {
    if (!requestId) throw ProtocolError("the answer to run_test names no request id to follow");
    return ctl::follow({*requestId, ServerWatch::Run{project, {tests, suite}}}, options, session,
                       end, context);
  }
  if (launched) return ExitStatus::success;
  if (requestId) {
    context.console.complain("the request waits for it; " + FollowWords::waysOn(*requestId));
  }
  return ExitStatus::noApp;
}

}  // namespace corvane::ctl
