#include "corvanectl/CommandLine.h"

#include <gtest/gtest.h>

#include <vector>

#include "corvanectl/commands/CallCommand.h"
#include "corvanectl/commands/CancelCommand.h"
#include "corvanectl/commands/FollowCommand.h"
#include "corvanectl/commands/HealthCommand.h"
#include "corvanectl/commands/RetryCommand.h"
#include "corvanectl/commands/RunCommand.h"
#include "corvanectl/commands/ToolsCommand.h"

namespace corvane::testing {
namespace {

using namespace ctl;

std::variant<Invocation, CommandLineReply> parse(std::vector<const char*> words) {
  words.insert(words.begin(), "corvanectl");
  return parseCommandLine(static_cast<int>(words.size()), words.data());
}

Invocation invocation(std::vector<const char*> words) {
  auto parsed = parse(std::move(words));
  if (const auto* reply = std::get_if<CommandLineReply>(&parsed)) ADD_FAILURE() << reply->text;
  return std::get<Invocation>(std::move(parsed));
}

template <class Command>
Command command(std::vector<const char*> words) {
  return dynamic_cast<Command&>(*invocation(std::move(words)).command);
}

CommandLineReply reply(std::vector<const char*> words) {
  return std::get<CommandLineReply>(parse(std::move(words)));
}

TEST(CommandLine, ReadsTools) {
  EXPECT_EQ(command<ToolsCommand>({"tools"}).name, std::nullopt);
  const auto one = command<ToolsCommand>({"tools", "health", "--json"});
  EXPECT_EQ(one.name, "health");
  EXPECT_TRUE(one.json);
}

TEST(CommandLine, ReadsCallsOfToolsThatAreNamedLikeCommands) {
  for (const char* tool : {"health", "tools", "call", "run", "follow", "cancel", "get_result"}) {
    EXPECT_EQ(command<CallCommand>({"call", tool}).tool, tool);
  }
}

TEST(CommandLine, ReadsTheArgumentsOfACall) {
  EXPECT_EQ(command<CallCommand>({"call", "x"}).arguments, "{}");
  EXPECT_EQ(command<CallCommand>({"call", "x", "{}"}).arguments, "{}");
  EXPECT_EQ(command<CallCommand>({"call", "x", "{\"a\":[1,2]}"}).arguments, "{\"a\":[1,2]}");
  EXPECT_EQ(command<CallCommand>({"call", "x", "-"}).arguments, "-");
  EXPECT_EQ(command<CallCommand>({"call", "x", "@file"}).arguments, "@file");
  EXPECT_FALSE(command<CallCommand>({"call", "x"}).withoutArguments);
  EXPECT_TRUE(command<CallCommand>({"call", "x", "--no-arguments"}).withoutArguments);
  EXPECT_EQ(command<CallCommand>({"call", "x", "--pictures", "d"}).pictures, "d");
}

TEST(CommandLine, ReadsServerOptionsBeforeAndAfterTheCommand) {
  const auto before = invocation({"--server", "s", "--log", "--timeout", "2.5", "health"}).server;
  EXPECT_EQ(before.server, "s");
  EXPECT_TRUE(before.showLog);
  EXPECT_EQ(before.timeout, 2.5);
  const auto after = invocation({"health", "--server", "s", "--timeout", "1"}).server;
  EXPECT_EQ(after.server, "s");
  EXPECT_EQ(after.timeout, 1);
  EXPECT_FALSE(after.showLog);
}

TEST(CommandLine, ReadsTheTestsOfARunInEitherStyle) {
  const std::vector<std::string> both{"Login", "Check out"};
  EXPECT_EQ(command<RunCommand>({"run", "Shop", "--test", "Login", "Check out"}).tests, both);
  EXPECT_EQ(command<RunCommand>({"run", "--test", "Login", "--test=Check out", "Shop"}).tests,
            both);
  const auto run = command<RunCommand>({"run", "Shop", "--test", "Login", "Check out", "--follow"});
  EXPECT_EQ(run.project, "Shop");
  EXPECT_EQ(run.tests, both);
  EXPECT_TRUE(run.follow);
}

TEST(CommandLine, TakesNamesAsTheyAre) {
  const std::vector<std::string> names{"[smoke]", "a,b", "{}"};
  EXPECT_EQ(command<RunCommand>({"run", "health", "--test", "[smoke]", "a,b", "{}"}).tests, names);
}

TEST(CommandLine, ReadsTheOtherTargets) {
  EXPECT_EQ(command<RunCommand>({"run", "Shop", "--suite", "Smoke"}).suite, "Smoke");
  EXPECT_TRUE(command<RunCommand>({"run", "Shop", "--all"}).all);
}

TEST(CommandLine, ReadsTheOptionsOfARun) {
  const auto run = command<RunCommand>({"run", "Shop", "--all", "--param", "a=b=c", "d=", "--param",
                                        "e=[f]", "--platform", "IOS", "--udid", "U", "--json"});
  const std::vector<std::pair<std::string, std::string>> params{
      {"a", "b=c"}, {"d", ""}, {"e", "[f]"}};
  EXPECT_EQ(run.params, params);
  EXPECT_EQ(run.platform, "iOS");
  EXPECT_EQ(run.udid, "U");
  EXPECT_EQ(run.build, std::nullopt);
  EXPECT_TRUE(run.options.json);
  EXPECT_EQ(command<RunCommand>({"run", "Shop", "--all", "--build"}).build, true);
  EXPECT_EQ(command<RunCommand>({"run", "Shop", "--all", "--no-build"}).build, false);
}

TEST(CommandLine, ReadsFollow) {
  const auto follow = command<FollowCommand>({"follow", "id", "--pictures", "d", "--json"});
  EXPECT_EQ(follow.requestId, "id");
  EXPECT_EQ(follow.options.pictures, "d");
  EXPECT_TRUE(follow.options.json);
}

TEST(CommandLine, ReadsTheShortForms) {
  EXPECT_EQ(command<CancelCommand>({"cancel", "an \"id\""}).requestId, "an \"id\"");
  EXPECT_TRUE(command<HealthCommand>({"health", "--json"}).json);
}

TEST(CommandLine, ShowsHelpAndVersion) {
  EXPECT_EQ(reply({"--version"}).text, "corvanectl 0.2.0\n");
  for (const char* name : {"status", "list", "projects", "tests", "run", "follow", "show", "retry",
                           "cancel", "doctor", "health", "tools", "call"}) {
    const auto help = reply({name, "--help"});
    EXPECT_EQ(reply({"help", name}).text, help.text);
    EXPECT_EQ(help.status, ExitStatus::success);
    EXPECT_NE(help.text.find("Examples:\n  corvanectl " + std::string(name)), std::string::npos);
    EXPECT_NE(reply({"--help"}).text.find(std::string("  corvanectl ") + name), std::string::npos);
  }
}

TEST(CommandLine, ShowsTheHelpThatIsAskedFor) {
  EXPECT_EQ(reply({"help"}).text, reply({"--help"}).text);
  EXPECT_EQ(reply({"help"}).status, ExitStatus::success);
  EXPECT_EQ(reply({"help", "rnu"}).text,
            "corvanectl: there is no command 'rnu'. Did you mean 'run'? 'corvanectl help' lists "
            "them\nRun with --help for more information.\n");
}

// What shells call is not for people.
TEST(CommandLine, KeepsHiddenCommandsToItself) {
  EXPECT_EQ(reply({"help"}).text.find("\n  names"), std::string::npos);
  EXPECT_EQ(reply({"nmaes"}).text.find("'names'"), std::string::npos);
}

// Fails when what stands before the command is lost, or a value is taken for the command.
TEST(CommandLine, TakesOptionsInAnyOrder) {
  EXPECT_TRUE(command<HealthCommand>({"--json", "health"}).json);
  const auto run = invocation({"--suite", "run", "--timeout", "3", "run", "Shop", "--log"});
  EXPECT_EQ(dynamic_cast<RunCommand&>(*run.command).suite, "run");
  EXPECT_EQ(dynamic_cast<RunCommand&>(*run.command).project, "Shop");
  EXPECT_EQ(run.server.timeout, 3);
  EXPECT_TRUE(run.server.showLog);
}

// Fails when an option that takes many values takes the project, too, or a value is taken for it.
TEST(CommandLine, TakesTheProjectBehindManyValues) {
  const auto expectRun = [](std::vector<const char*> words, const std::vector<std::string>& tests) {
    const auto run = command<RunCommand>(std::move(words));
    EXPECT_EQ(run.project, "Shop");
    EXPECT_EQ(run.tests, tests);
  };
  expectRun({"run", "--test", "A", "Shop", "--json"}, {"A"});
  expectRun({"run", "--test", "A", "B", "Shop", "--param", "a=b"}, {"A", "B"});
  expectRun({"--test", "A", "run", "Shop", "--follow"}, {"A"});
  expectRun({"run", "--param", "a=b", "Shop", "--test", "A"}, {"A"});
  expectRun({"run", "Shop", "--test", "A", "B"}, {"A", "B"});
  expectRun({"run", "--json", "Shop", "--test", "A", "B"}, {"A", "B"});
  const auto all = command<RunCommand>({"run", "--param", "a=b", "c=d", "Shop", "--all"});
  EXPECT_EQ(all.project, "Shop");
  EXPECT_EQ(all.params.size(), 2U);
  const auto again = command<RetryCommand>({"retry", "--param", "a=b", "c=d"});
  EXPECT_EQ(again.request, "last");
  EXPECT_EQ(command<RetryCommand>({"retry", "--param", "a=b", "3f2a"}).request, "3f2a");
}

TEST(CommandLine, TakesOneBracketedNameAsItIs) {
  for (const char* name : {"[smoke]", "[[a]]", "{}", "[", "\1[x"}) {
    EXPECT_EQ(command<RunCommand>({"run", "Shop", "--test", name}).tests,
              std::vector<std::string>{name});
    const std::string joined = std::string("--test=") + name;
    EXPECT_EQ(command<RunCommand>({"run", "Shop", joined.c_str()}).tests,
              std::vector<std::string>{name});
    EXPECT_EQ(command<CallCommand>({"call", "x", name}).arguments, name);
  }
}

/// The first line of what is said about a wrong command line.
std::string complaint(std::vector<const char*> words) {
  const CommandLineReply refused = reply(std::move(words));
  EXPECT_EQ(refused.status, ExitStatus::usage);
  return refused.text.substr(0, refused.text.find('\n'));
}

TEST(CommandLine, SaysWhatIsWrong) {
  EXPECT_EQ(complaint({}), "corvanectl: A command ('corvanectl help' lists them) is required");
  EXPECT_EQ(complaint({"halth"}),
            "corvanectl: there is no command 'halth'. Did you mean 'health'? 'corvanectl help' "
            "lists them");
  EXPECT_EQ(complaint({"xyzzy", "--json"}),
            "corvanectl: there is no command 'xyzzy'. 'corvanectl help' lists them");
  EXPECT_EQ(complaint({"run", "Shop", "--all", "--folow"}),
            "corvanectl: 'run' has no option '--folow'. Did you mean '--follow'? 'corvanectl help "
            "run' lists those it has");
  EXPECT_EQ(complaint({"health", "--timout=3"}),
            "corvanectl: 'health' has no option '--timout=3'. Did you mean '--timeout'? "
            "'corvanectl help health' lists those it has");
  EXPECT_EQ(complaint({"health", "[more]"}),
            "corvanectl: 'health' takes no further argument: '[more]'");
  EXPECT_EQ(complaint({"run", "Shop", "--all", "--param", "novalue"}),
            "corvanectl: --param: expected KEY=VALUE, not 'novalue'");
  EXPECT_EQ(complaint({"health", "--timeout", "soon"}),
            "corvanectl: --timeout: expected seconds from 0.001 to 100000000, not 'soon'");
  EXPECT_EQ(complaint({"show", "--test", "-1"}),
            "corvanectl: --test: expected a number from 0, not '-1'");
  EXPECT_EQ(complaint({"run", "Shop", "--all", "--platform", "windows"}),
            "corvanectl: --platform: expected iOS or android, not 'windows'");
  EXPECT_EQ(complaint({"run", "Shop", "--all", "--color", "1"}),
            "corvanectl: --color: expected auto, always or never, not '1'");
  EXPECT_EQ(complaint({"run", "Shop", "--all", "--follow", "--junit", ""}),
            "corvanectl: --junit: expected the name of a file, not ''");
  EXPECT_EQ(complaint({"try", "--home", ""}),
            "corvanectl: --home: expected the name of a folder, not ''");
  EXPECT_EQ(complaint({"show", "--pictures", ""}),
            "corvanectl: --pictures: expected the name of a folder, not ''");
  EXPECT_EQ(complaint({"run", "Shop", "--all", "--follow", "--app-timeout", "abc"}),
            "corvanectl: --app-timeout: expected seconds from 0 to 100000000, not 'abc'");
  EXPECT_EQ(complaint({"run", "Shop", "--all", "--param", "=x"}),
            "corvanectl: --param: expected KEY=VALUE, not '=x'");
  // What is unknown is told before what is missing.
  EXPECT_EQ(complaint({"run", "-f"}),
            "corvanectl: 'run' has no option '-f'. 'corvanectl help run' lists those it has");
}

TEST(CommandLine, RefusesWhatMakesNoSense) {
  const std::vector<std::vector<const char*>> wrong{
      {},
      {"dance"},
      {"call"},
      {"call", "x", "{}", "more"},
      {"call", "x", "{}", "--no-arguments"},
      {"follow"},
      {"cancel"},
      {"health", "--timeout", "0"},
      {"health", "--timeout", "soon"},
      {"run", "Shop"},
      {"run", "--all"},
      {"run", "Shop", "--all", "--suite", "Smoke"},
      {"run", "Shop", "--all", "--test", "Login"},
      {"run", "Shop", "--all", "--build", "--no-build"},
      {"run", "Shop", "--all", "--platform", "windows"},
      {"run", "Shop", "--all", "--param", "novalue"},
      {"run", "Shop", "--all", "--pictures", "d"},
  };
  for (const auto& words : wrong) {
    const auto parsed = parse(words);
    const auto* refused = std::get_if<CommandLineReply>(&parsed);
    ASSERT_TRUE(refused) << ::testing::PrintToString(words);
    EXPECT_EQ(refused->status, ExitStatus::usage) << refused->text;
    EXPECT_TRUE(refused->text.starts_with("corvanectl: ")) << refused->text;
  }
}

}  // namespace
}  // namespace corvane::testing
