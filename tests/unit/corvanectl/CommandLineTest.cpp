#include "corvanectl/CommandLine.h"

#include <gtest/gtest.h>

#include <vector>

#include "corvanectl/commands/CallCommand.h"
#include "corvanectl/commands/CancelCommand.h"
#include "corvanectl/commands/FollowCommand.h"
#include "corvanectl/commands/HealthCommand.h"
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
  for (const char* name : {"tools", "call", "run", "follow", "cancel", "health"}) {
    const auto help = reply({name, "--help"});
    EXPECT_EQ(help.status, ExitStatus::success);
    EXPECT_NE(help.text.find("Examples:\n  corvanectl " + std::string(name)), std::string::npos);
    EXPECT_NE(reply({"--help"}).text.find(std::string("  corvanectl ") + name), std::string::npos);
  }
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
