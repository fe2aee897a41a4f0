#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "CorvaneCore/json/JsonReader.h"
#include "FakeServerScript.h"
#include "corvanectl/commands/CallCommand.h"
#include "corvanectl/commands/Following.h"

namespace corvane::testing {
namespace {

using namespace ctl;

/// Commands carried out by this process, which shows nothing.
class CommandsTest : public ::testing::Test {
 protected:
  /// Follows a request that goes on until `end`.
  ExitStatus followUntil(Deadline end) {
    Session session(context);
    const auto begin = std::chrono::steady_clock::now();
    const ExitStatus status = follow({"ID"}, FollowOptions(), session, end, context);
    followed = std::chrono::steady_clock::now() - begin;
    return status;
  }

  const FileDescriptor nowhere{::open("/dev/null", O_WRONLY | O_CLOEXEC)};
  const ServerOptions options{FakeServerScript::program(), false, {}};
  Interruption interruption;
  Console console{interruption, nowhere.get(), nowhere.get()};
  PictureViewer pictureViewer{console, interruption};
  ServerLog log;
  CommandContext context{options, console, pictureViewer, log, interruption};
  /// How long it followed last.
  Seconds followed{};
};

const std::vector<std::string> goesOn = greeted(
    {"expect tools/call", textResult("status: running (NOT terminal — run still in progress, call "
                                     "get_result again)\nappRunning: true\n\n{}")});

// Fails when the last look waits although the time is up.
TEST_F(CommandsTest, TheLastLookDoesNotWait) {
  const FakeServerScript script(goesOn);
  EXPECT_EQ(followUntil(after(Seconds(-0.01))), ExitStatus::timedOut);
  const AnyCodable call = readJson(script.received().back());
  EXPECT_EQ(*call.find("params")->find("arguments")->find("waitSeconds"), AnyCodable(0));
}

// Fails when it pauses before it gives up, which takes half a second.
TEST_F(CommandsTest, GivesUpWithoutAPause) {
  Seconds shortest = Seconds::max();
  // A machine that is busy may hold it up, but not every time.
  for (int i = 0; i < 5 && shortest > Seconds(0.25); ++i) {
    const FakeServerScript script(goesOn);
    EXPECT_EQ(followUntil(after(Seconds(-0.01))), ExitStatus::timedOut);
    shortest = std::min(shortest, followed);
  }
  EXPECT_LT(shortest, Seconds(0.5));
}

// Fails when what the tool was asked to wait is not added to the usual time.
TEST_F(CommandsTest, ACallMayTakeAsLongAsItsToolWaits) {
  const FakeServerScript script(
      greeted({"expect tools/call", "delay 3000", textResult("at last")}));
  context.usualTimeout = Seconds(2);
  CallCommand call;
  call.tool = "get_result";
  call.arguments = R"({"waitSeconds":30})";
  EXPECT_EQ(call.execute(context), ExitStatus::success);
  call.arguments = "{}";
  EXPECT_THROW((void)call.execute(context), NoAnswer);
}

}  // namespace
}  // namespace corvane::testing
