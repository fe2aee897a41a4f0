#include "corvanectl/CommandLine.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/json/JsonWriter.h"

namespace corvane::ctl {

namespace {

constexpr const char* exitStatuses = R"(
Exit status:
  0   done; the followed request went well
  1   the tool or the server reported an error; the followed request failed
  2   the server could not be started, ended early or broke the protocol
  3   the followed request was blocked or cancelled, or ended in error or with a warning
  4   the time ran out
  64  the command line or the given arguments are wrong
  74  a file or the output could not be written)";

constexpr const char* toolsExamples =
    R"(  corvanectl tools                      what the server can do
  corvanectl tools run_test             one tool with its arguments
  corvanectl tools --json
)";
constexpr const char* callExamples = R"(  corvanectl call describe_project '{"projectName":"Shop"}'
  corvanectl call create_test @login.json
  generate-test | corvanectl call create_test -
  corvanectl call get_result '{"requestId":"ID","includeStepTrace":true}' --pictures shots
)";
constexpr const char* runExamples = R"(  corvanectl run Shop --test Login Checkout --follow
  corvanectl run Shop --suite Smoke --platform android
  corvanectl run Shop --all --param username=me@example.com --no-build
)";
constexpr const char* followExamples = R"(  corvanectl follow REQUEST_ID --pictures shots
  corvanectl follow REQUEST_ID --timeout 600 --json
)";
constexpr const char* cancelExamples = "  corvanectl cancel REQUEST_ID\n";
constexpr const char* healthExamples = "  corvanectl health\n";

/// Enough for any list of names. Naming a limit also keeps CLI11 from taking a value in brackets
/// apart, as it does for lists without one.
constexpr int manyValues = 10000;

std::vector<std::string> platforms() {
  const auto& rows = Vocabulary<AgentTargetPlatform>::rows;
  std::vector<std::string> names;
  names.reserve(rows.size());
  for (const auto& row : rows) names.emplace_back(row.rawValue);
  return names;
}

/// The options of one command, bound to the record they fill in.
class CommandLine {
 public:
  CommandLine() {
    // That there is a command is checked after parsing, when an unknown one can be named.
    app.require_subcommand(0, 1);
    app.allow_extras();
    app.fallthrough();
    app.footer(std::string("\nExamples:\n") + toolsExamples + callExamples + runExamples +
               followExamples + cancelExamples + healthExamples + exitStatuses);
    app.set_version_flag("--version", "corvanectl " CORVANE_VERSION);
    app.add_option(
           "--server", server.server,
           "The server program (default: corvane-mcp beside this program, else on the PATH)")
        ->type_name("PATH");
    app.add_flag("--log", server.showLog, "Show what the server writes to its standard error");
    app.add_option("--timeout", server.timeout,
                   "Give up after this time: on an answer (default: 30, and what a tool may wait), "
                   "on the whole of follow (default: none)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.001, 1e8).description(""));
    addTools();
    addCall();
    addRun();
    addFollow();
    addCancel();
    addHealth();
  }

  std::variant<Invocation, CommandLineReply> parse(int argc, const char* const* argv) {
    try {
      app.parse(argc, argv);
      requireOneCommand();
      if (runApp->parsed()) requireOneTarget();
    } catch (const CLI::ParseError& error) {
      std::ostringstream text;
      const bool asked = app.exit(error, text, text) == 0;
      if (asked) return CommandLineReply{text.str(), ExitStatus::success};
      return CommandLineReply{"corvanectl: " + text.str(), ExitStatus::usage};
    }
    return Invocation{server, chosen()};
  }

 private:
  using Command = decltype(Invocation::command);

  void addTools() {
    toolsApp = addCommand(toolsExamples, "tools", "List the server's tools, or show one of them");
    toolsApp->add_option("NAME", tools.name, "The tool to show")->type_name("");
    addJson(toolsApp, tools.json, "Print what the server says of them, as JSON");
  }

  void addCall() {
    callApp = addCommand(callExamples, "call", "Call a tool and print its answer");
    callApp->add_option("TOOL", call.tool, "The tool's name")->type_name("")->required();
    auto* arguments =
        callApp->add_option("ARGUMENTS", call.arguments,
                            "A JSON object, @FILE to read it from a file, or - to read it from "
                            "standard input (default: {})");
    arguments->type_name("");
    callApp->add_flag("--no-arguments", withoutArguments, "Send no arguments at all")
        ->excludes(arguments);
    addPictures(callApp, call.pictures);
    addJson(callApp, call.json, "Print the tool's result as JSON");
  }

  void addRun() {
    runApp = addCommand(runExamples, "run", "Run tests that exist in a project");
    runApp->add_option("PROJECT", run.project, "The project's exact name")
        ->type_name("")
        ->required();
    addNames(runApp->add_option("--test", run.tests, "Run these tests, by exact name"), "NAME");
    runApp->add_option("--suite", run.suite, "Run every test of this suite")->type_name("NAME");
    runApp->add_flag("--all", run.all, "Run every test of the project");
    addNames(runApp->add_option("--param", params, "Values for the $placeholders of the tests")
                 ->check(CLI::Validator(
                     [](const std::string& text) {
                       return text.find('=') == std::string::npos ? "expected KEY=VALUE" : "";
                     },
                     "")),
             "KEY=VALUE");
    auto* build = runApp->add_flag("--build", withBuild, "Build first, whatever the project says");
    runApp->add_flag("--no-build", withoutBuild, "Run what is already on the device")
        ->excludes(build);
    runApp
        ->add_option("--platform", run.platform,
                     joinedRawValues<AgentTargetPlatform>(" or ") + " (default: the project's)")
        ->type_name("PLATFORM")
        ->transform(CLI::IsMember(platforms(), CLI::ignore_case).description(""));
    runApp->add_option("--udid", run.udid, "The iOS simulator to run on")->type_name("UDID");
    auto* follow =
        runApp->add_flag("--follow", run.follow, "Wait for the run and show how it went");
    addPictures(runApp, run.pictures)->needs(follow);
    addJson(runApp, run.json, "Print the result as JSON");
  }

  /// Beside an option group, which could say the same, CLI11 takes a project's name that comes last
  /// for one more test.
  void requireOneCommand() const {
    if (const auto unknown = app.remaining(); !unknown.empty()) {
      throw CLI::ExtrasError(app.get_name(), unknown);
    }
    if (app.get_subcommands().empty()) throw CLI::RequiredError("A subcommand");
  }

  void requireOneTarget() const {
    const int targets = (run.tests.empty() ? 0 : 1) + (run.suite ? 1 : 0) + (run.all ? 1 : 0);
    if (targets != 1) throw CLI::RequiredError("Exactly one of --test, --suite and --all");
  }

  void addFollow() {
    followApp = addCommand(followExamples, "follow", "Wait for a request and show how it went");
    addRequestId(followApp, follow.requestId);
    addPictures(followApp, follow.pictures);
    addJson(followApp, follow.json, "Print the final result as JSON");
  }

  void addCancel() {
    cancelApp = addCommand(cancelExamples, "cancel", "Cancel a request");
    addRequestId(cancelApp, cancelledId);
    addJson(cancelApp, call.json, "Print the tool's result as JSON");
  }

  void addHealth() {
    healthApp =
        addCommand(healthExamples, "health", "Check that the server and Corvane.app are well");
    addJson(healthApp, call.json, "Print the tool's result as JSON");
  }

  CLI::App* addCommand(const std::string& examples, const std::string& name,
                       const std::string& description) {
    auto* command = app.add_subcommand(name, description);
    command->footer("\nExamples:\n" + examples +
                    "\n'corvanectl --help' tells the options of every command (--server, --log, "
                    "--timeout)\nand the exit statuses.");
    return command;
  }

  static void addRequestId(CLI::App* command, std::string& requestId) {
    command->add_option("REQUEST_ID", requestId, "The id that the request was given")
        ->type_name("")
        ->required();
  }

  static void addNames(CLI::Option* option, const std::string& name) {
    option->expected(1, manyValues)->allow_extra_args(false)->type_name(name);
  }

  static void addJson(CLI::App* command, bool& json, const std::string& description) {
    command->add_flag("--json", json, description);
  }

  static CLI::Option* addPictures(CLI::App* command,
                                  std::optional<std::filesystem::path>& directory) {
    return command
        ->add_option(
            "--pictures", directory,
            "Save the pictures of the answer in this folder. On a terminal they are shown, "
            "too, where the program chafa is installed")
        ->type_name("DIR");
  }

  Command chosen() {
    if (toolsApp->parsed()) return tools;
    if (followApp->parsed()) return follow;
    if (runApp->parsed()) return finishedRun();
    if (cancelApp->parsed()) {
      call.tool = "cancel_run";
      call.arguments = toJson(AnyCodable::Object{{"requestId", cancelledId}});
    } else if (healthApp->parsed()) {
      call.tool = "health";
    } else if (withoutArguments) {
      call.arguments.reset();
    }
    return call;
  }

  RunCommand finishedRun() {
    for (const std::string& param : params) {
      const std::size_t equals = param.find('=');
      run.params.emplace_back(param.substr(0, equals), param.substr(equals + 1));
    }
    if (withBuild || withoutBuild) run.build = withBuild;
    return run;
  }

  CLI::App app{"Talk to the corvane-mcp server from a terminal.", "corvanectl"};
  CLI::App* toolsApp = nullptr;
  CLI::App* callApp = nullptr;
  CLI::App* runApp = nullptr;
  CLI::App* followApp = nullptr;
  CLI::App* cancelApp = nullptr;
  CLI::App* healthApp = nullptr;
  ServerOptions server;
  ToolsCommand tools;
  CallCommand call;
  RunCommand run;
  FollowCommand follow;
  bool withoutArguments = false;
  std::vector<std::string> params;
  bool withBuild = false;
  bool withoutBuild = false;
  std::string cancelledId;
};

}  // namespace

std::variant<Invocation, CommandLineReply> parseCommandLine(int argc, const char* const* argv) {
  return CommandLine().parse(argc, argv);
}

}  // namespace corvane::ctl
