#include "corvanectl/commands/RunCommand.h"

#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/commands/FollowCommand.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/commands/ResultOutput.h"

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
  takeMany(app.add_option("--test", tests, "Run these tests, by exact name"), "NAME");
  app.add_option("--suite", suite, "Run every test of this suite")->type_name("NAME");
  app.add_flag("--all", all, "Run every test of the project");
  takeMany(app.add_option_function<std::vector<std::string>>(
                  "--param",
                  [this](const std::vector<std::string>& given) {
                    for (const auto& text : given) params.push_back(splitParam(text));
                  },
                  "Values for the $placeholders of the tests")
               ->check(CLI::Validator(
                   [](const std::string& text) {
                     return text.find('=') == std::string::npos ? "expected KEY=VALUE" : "";
                   },
                   "")),
           "KEY=VALUE");
  auto* withBuild = app.add_flag_callback(
      "--build", [this] { build = true; }, "Build first, whatever the project says");
  app.add_flag_callback(
         "--no-build", [this] { build = false; }, "Run what is already on the device")
      ->excludes(withBuild);
  app.add_option("--platform", platform,
                 joinedRawValues<AgentTargetPlatform>(" or ") + " (default: the project's)")
      ->type_name("PLATFORM")
      ->transform(CLI::IsMember(platforms(), CLI::ignore_case).description(""));
  app.add_option("--udid", udid, "The iOS simulator to run on")->type_name("UDID");
  auto* following = app.add_flag("--follow", follow, "Wait for the run and show how it went");
  addPictures(app, pictures)->needs(following);
  addJson(app, json, "Print the result as JSON");
}

void RunCommand::check() const {
  const int targets = (tests.empty() ? 0 : 1) + (suite ? 1 : 0) + (all ? 1 : 0);
  if (targets != 1) throw CLI::RequiredError("Exactly one of --test, --suite and --all");
}

ExitStatus RunCommand::execute(CommandContext& context) const {
  constexpr std::string_view tool = "run_test";
  const Deadline end = followEnd(context.options);
  Session session(context);
  const AnyCodable answer = session.callTool(tool, runArguments(*this));
  const ToolResult result = ToolResult::from(answer);
  const bool goesOn = follow && !result.isError;
  if (!json) {
    ResultOutput(context.console, tool, pictures, &context.pictureViewer).print(result);
  } else if (!goesOn) {
    context.console.print(toJson(answer) + "\n");
  }
  if (!goesOn) return exitStatusOf(result);

  const auto requestId = AnswerTexts::readRequestId(result.firstText());
  if (!requestId) throw ProtocolError("the answer to run_test names no request id to follow");
  if (!json) context.console.print("\n\n");
  return ctl::follow({*requestId, json, pictures}, session, end, context);
}

}  // namespace corvane::ctl
