#include "corvanectl/protocol/ServerProcess.h"

#include <gtest/gtest.h>
#include <signal.h>

#include "CorvaneCore/files/Files.h"
#include "FakeServerScript.h"
#include "corvanectl/protocol/ProtocolError.h"

namespace corvane {
namespace {

constexpr Seconds amplePatience{30};
constexpr Seconds littlePatience{0.05};

class ServerProcessTest : public testing::Test {
 protected:
  /// What readLine throws once the server of this script has ended.
  std::string endingOf(const std::vector<std::string>& lines) {
    const FakeServerScript script(lines);
    ServerProcess server(FakeServerScript::program(), log, interruption);
    try {
      while (server.readLine(after(amplePatience))) continue;
    } catch (const ServerEnded& ended) {
      return ended.what();
    }
    return "no end";
  }

  std::filesystem::path shellProgram(const std::string& commands) {
    const auto path = directory.path() / "program";
    writeFileWhole(path, "#!/bin/sh\n" + commands + "\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }

  TemporaryDirectory directory;
  Interruption interruption;
  ServerLog log;
};

TEST_F(ServerProcessTest, CarriesLinesBothWays) {
  ServerProcess echo("/bin/cat", log, interruption);
  echo.send("one");
  echo.send("two");
  EXPECT_EQ(echo.readLine(after(amplePatience)), "one");
  EXPECT_EQ(echo.readLine(after(amplePatience)), "two");
  EXPECT_EQ(echo.readLine(after(littlePatience)), std::nullopt);
}

TEST_F(ServerProcessTest, CarriesTensOfMegabytesBothWaysAtOnce) {
  std::string line;
  line.append(30'000'000, 'x');
  ServerProcess echo("/bin/cat", log, interruption);
  echo.send(line);
  const auto echoed = echo.readLine(after(amplePatience));
  ASSERT_TRUE(echoed);
  EXPECT_TRUE(*echoed == line);
}

TEST_F(ServerProcessTest, IsNotHeldUpByAFullErrorPipe) {
  std::vector<std::string> lines(3000, "log " + std::string(100, 'x'));
  lines.emplace_back("say done");
  const FakeServerScript script(lines);
  ServerProcess server(FakeServerScript::program(), log, interruption);
  EXPECT_EQ(server.readLine(after(amplePatience)), "done");
}

TEST_F(ServerProcessTest, ReportsHowTheServerEnded) {
  EXPECT_EQ(endingOf({"say x", "exit 3"}), "the server ended with exit status 3");
  EXPECT_TRUE(endingOf({"crash"}).starts_with("the server was ended by signal 6"));
  EXPECT_EQ(endingOf({"log last words", "exit 0"}), "the server ended with exit status 0");
  ASSERT_FALSE(log.lastLines().empty());
  EXPECT_EQ(log.lastLines().back(), "last words");
}

TEST_F(ServerProcessTest, NoticesClosedOutputOfALivingServer) {
  EXPECT_EQ(endingOf({"closeOutput", "ignoreTerm", "hang"}),
            "the server closed its standard output without ending");
}

TEST_F(ServerProcessTest, NoticesTheEndWhenAnotherProgramHoldsThePipes) {
  ServerProcess server(shellProgram("sleep 50 & echo $! >&2; exit 5"), log, interruption);
  try {
    (void)server.readLine(after(amplePatience));
    ADD_FAILURE() << "not noticed";
  } catch (const ServerEnded& ended) {
    EXPECT_STREQ(ended.what(), "the server ended with exit status 5");
  }
  ::kill(std::stoi(log.lastLines().front()), SIGKILL);
}

TEST_F(ServerProcessTest, SurvivesAServerThatReadsNothing) {
  ServerProcess server(shellProgram("exec 0<&-; echo ready; sleep 0.2; exit 4"), log, interruption);
  EXPECT_EQ(server.readLine(after(amplePatience)), "ready");
  server.send(std::string(1'000'000, 'x'));
  EXPECT_THROW((void)server.readLine(after(amplePatience)), ServerEnded);
}

TEST_F(ServerProcessTest, ReportsAProgramThatCannotBeStarted) {
  EXPECT_THROW(ServerProcess("/nowhere/server", log, interruption), ProtocolError);
}

TEST_F(ServerProcessTest, LeavesNoServerBehind) {
  for (const auto& lines :
       {std::vector<std::string>{}, {"hang"}, {"ignoreTerm", "say ready", "hang"}}) {
    const FakeServerScript script(lines);
    {
      ServerProcess server(FakeServerScript::program(), log, interruption);
      server.send("{}");
      if (!lines.empty() && lines.front() == "ignoreTerm") {
        EXPECT_EQ(server.readLine(after(amplePatience)), "ready");
      }
    }
    EXPECT_TRUE(script.serverIsGone());
  }
}

TEST_F(ServerProcessTest, LeavesNoServerBehindWhenTheLogCannotBeShown) {
  const auto idFile = directory.path() / "id";
  ServerLog broken([](std::string_view) { throw std::runtime_error("no reader"); });
  {
    ServerProcess server(shellProgram("echo $$ >" + idFile.string() +
                                      "; echo ready; read line; echo bye >&2; exec sleep 20"),
                         broken, interruption);
    EXPECT_EQ(server.readLine(after(amplePatience)), "ready");
  }
  EXPECT_NE(::kill(std::stoi(readFile(idFile)), 0), 0);
}

TEST_F(ServerProcessTest, StopsWaitingAtASignal) {
  ServerProcess echo("/bin/cat", log, interruption);
  ::raise(SIGINT);
  try {
    (void)echo.readLine(after(amplePatience));
    FAIL() << "not interrupted";
  } catch (const Interrupted& interrupted) {
    EXPECT_EQ(interrupted.signal, SIGINT);
  }
  EXPECT_TRUE(interruption.happened());
}

}  // namespace
}  // namespace corvane
