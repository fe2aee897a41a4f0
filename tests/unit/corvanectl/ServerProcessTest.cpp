#include "corvanectl/protocol/ServerProcess.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include "CorvaneCore/files/Files.h"
#include "FakeServerScript.h"
#include "tests/support/DefaultInterrupt.h"

namespace corvane::testing {
namespace {

using namespace ctl;

class ServerLocationTest : public ::testing::Test {
 protected:
  std::filesystem::path addProgram(const std::string& folder) {
    const auto path = directory.path() / folder / "corvane-mcp";
    writeFileWhole(path, "");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }
  [[nodiscard]] std::string folder(const std::string& name) const {
    return directory.path() / name;
  }
  [[nodiscard]] std::filesystem::path own() const {
    return directory.path() / "bin" / "corvanectl";
  }

  TemporaryDirectory directory;
};

TEST_F(ServerLocationTest, PrefersTheGivenPath) {
  addProgram("bin");
  EXPECT_EQ(locateServer("given", own(), folder("bin")), "given");
}

TEST_F(ServerLocationTest, ThenTheOneBesideThisProgram) {
  const auto beside = addProgram("bin");
  addProgram("other");
  EXPECT_EQ(locateServer(std::nullopt, own(), folder("other")), beside);
}

TEST_F(ServerLocationTest, ThenTheFirstOnTheSearchPath) {
  const auto found = addProgram("second");
  addProgram("third");
  std::filesystem::create_directories(directory.path() / "folder" / "corvane-mcp");
  writeFileWhole(directory.path() / "plain" / "corvane-mcp", "no program");
  const std::string path = "::" + folder("missing") + ":" + folder("folder") + ":" +
                           folder("plain") + ":" + folder("second") + ":" + folder("third");
  EXPECT_EQ(locateServer(std::nullopt, own(), path), found);
  EXPECT_EQ(locateServer(std::nullopt, {}, path), found);
}

TEST_F(ServerLocationTest, FailsWithoutAny) {
  EXPECT_THROW((void)locateServer(std::nullopt, own(), ""), ProtocolError);
  EXPECT_THROW((void)locateServer(std::nullopt, {}, folder("missing")), ProtocolError);
}

TEST(LineBuffer, GivesWholeLinesInOrder) {
  LineBuffer buffer;
  buffer.append("one\ntw");
  EXPECT_EQ(buffer.takeLine(), "one");
  EXPECT_EQ(buffer.takeLine(), std::nullopt);
  buffer.append("o\n\nthree");
  EXPECT_EQ(buffer.takeLine(), "two");
  EXPECT_EQ(buffer.takeLine(), "");
  EXPECT_EQ(buffer.takeLine(), std::nullopt);
  EXPECT_EQ(buffer.size(), 5U);
}

TEST(LineBuffer, KeepsItsPlaceHoweverTheBytesArrive) {
  std::string text;
  for (int i = 0; i < 500; ++i) text += std::string(static_cast<std::size_t>(i % 7), 'x') + "\n";
  LineBuffer buffer;
  int lines = 0;
  for (const char c : text) {
    buffer.append(std::string(1, c));
    while (const auto line = buffer.takeLine()) {
      ASSERT_EQ(line->size(), static_cast<std::size_t>(lines % 7));
      ++lines;
    }
  }
  EXPECT_EQ(lines, 500);
  EXPECT_EQ(buffer.size(), 0U);
}

TEST(LineBuffer, GivesTheRestOnceItIsAskedFor) {
  LineBuffer buffer;
  buffer.append("one\nrest");
  EXPECT_EQ(buffer.takeLine(), "one");
  EXPECT_EQ(buffer.takeRest(), "rest");
  EXPECT_EQ(buffer.takeRest(), std::nullopt);
  buffer.append("more\n");
  EXPECT_EQ(buffer.takeLine(), "more");
}

TEST(ServerLog, KeepsTheLastLines) {
  ServerLog log;
  for (int i = 0; i < 25; ++i) log.append("line " + std::to_string(i) + "\n");
  log.append("unfinished");
  log.finish();
  ASSERT_EQ(log.lastLines().size(), ServerLog::linesKept);
  EXPECT_EQ(log.lastLines().front(), "line 16");
  EXPECT_EQ(log.lastLines().back(), "unfinished");
}

TEST(ServerLog, ForwardsEachLineWhole) {
  std::vector<std::string> forwarded;
  ServerLog log([&](std::string_view line) { forwarded.emplace_back(line); });
  log.append("on");
  log.append("e\ntwo\n");
  EXPECT_EQ(forwarded, (std::vector<std::string>{"one", "two"}));
}

TEST(ServerLog, DoesNotCollectALineWithoutEnd) {
  std::size_t forwarded = 0;
  ServerLog log([&](std::string_view line) { forwarded += line.size(); });
  for (int i = 0; i < 1000; ++i) log.append(std::string(1000, 'x'));
  EXPECT_GT(forwarded, 900'000U);
  EXPECT_LT(log.lastLines().back().size(), 1000U);
}

constexpr Seconds ampleTimeout{30};
constexpr Seconds shortTimeout{0.05};

class ServerProcessTest : public ::testing::Test {
 protected:
  /// What readLine throws once the server of this script has ended.
  std::string endingOf(const std::vector<std::string>& lines) {
    const FakeServerScript script(lines);
    ServerProcess server(FakeServerScript::program(), log, interruption);
    try {
      while (server.readLine(after(ampleTimeout))) continue;
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
  DefaultInterrupt interrupt;
  Interruption interruption;
  ServerLog log;
};

TEST_F(ServerProcessTest, CarriesLinesBothWays) {
  ServerProcess echo("/bin/cat", log, interruption);
  echo.send("one");
  echo.send("two");
  EXPECT_EQ(echo.readLine(after(ampleTimeout)), "one");
  EXPECT_EQ(echo.readLine(after(ampleTimeout)), "two");
  EXPECT_EQ(echo.readLine(after(shortTimeout)), std::nullopt);
}

TEST_F(ServerProcessTest, CarriesTensOfMegabytesBothWaysAtOnce) {
  std::string line;
  line.append(30'000'000, 'x');
  ServerProcess echo("/bin/cat", log, interruption);
  echo.send(line);
  const auto echoed = echo.readLine(after(ampleTimeout));
  ASSERT_TRUE(echoed);
  EXPECT_TRUE(*echoed == line);
}

TEST_F(ServerProcessTest, IsNotHeldUpByAFullErrorPipe) {
  std::vector<std::string> lines(3000, "log " + std::string(100, 'x'));
  lines.emplace_back("say done");
  const FakeServerScript script(lines);
  ServerProcess server(FakeServerScript::program(), log, interruption);
  EXPECT_EQ(server.readLine(after(ampleTimeout)), "done");
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
    (void)server.readLine(after(ampleTimeout));
    ADD_FAILURE() << "not noticed";
  } catch (const ServerEnded& ended) {
    EXPECT_STREQ(ended.what(), "the server ended with exit status 5");
  }
  ::kill(std::stoi(log.lastLines().front()), SIGKILL);
}

TEST_F(ServerProcessTest, SurvivesAServerThatReadsNothing) {
  ServerProcess server(shellProgram("exec 0<&-; echo ready; sleep 0.2; exit 4"), log, interruption);
  EXPECT_EQ(server.readLine(after(ampleTimeout)), "ready");
  server.send(std::string(1'000'000, 'x'));
  EXPECT_THROW((void)server.readLine(after(ampleTimeout)), ServerEnded);
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
        EXPECT_EQ(server.readLine(after(ampleTimeout)), "ready");
      }
    }
    EXPECT_TRUE(script.serverIsGone());
  }
}

// Fails when a server that does not end with its input is killed without having been asked.
TEST_F(ServerProcessTest, AsksTheServerToEndBeforeItKillsIt) {
  const auto note = directory.path() / "asked";
  {
    ServerProcess server(shellProgram("trap 'echo >" + note.string() +
                                      "; exit' TERM; echo ready; while :; do sleep 0.01; done"),
                         log, interruption);
    EXPECT_EQ(server.readLine(after(ampleTimeout)), "ready");
  }
  EXPECT_TRUE(fileExists(note));
}

// Fails when a line is collected however long it gets.
TEST_F(ServerProcessTest, GivesUpOnALineWithoutEnd) {
  constexpr std::size_t longest = 1'000'000;
  const auto firstLine = [&](std::size_t length) {
    ServerProcess server(shellProgram("head -c " + std::to_string(length) +
                                      " /dev/zero | tr '\\0' x; echo; exec cat"),
                         log, interruption, longest);
    const auto line = server.readLine(after(ampleTimeout));
    return line ? line->size() : 0;
  };
  EXPECT_EQ(firstLine(longest), longest);
  EXPECT_THROW(firstLine(3 * longest), ProtocolError);
}

TEST_F(ServerProcessTest, LeavesNoServerBehindWhenTheLogCannotBeShown) {
  const auto idFile = directory.path() / "id";
  ServerLog broken([](std::string_view) { throw std::runtime_error("no reader"); });
  {
    ServerProcess server(shellProgram("echo $$ >" + idFile.string() +
                                      "; echo ready; read line; echo bye >&2; exec sleep 20"),
                         broken, interruption);
    EXPECT_EQ(server.readLine(after(ampleTimeout)), "ready");
  }
  EXPECT_NE(::kill(std::stoi(readFile(idFile)), 0), 0);
}

// Fails when Ctrl-C, which a terminal sends to the whole group, ends the server too.
TEST_F(ServerProcessTest, LeavesCtrlCToThisProgram) {
  ServerProcess server(shellProgram("echo $$; exec cat"), log, interruption);
  const auto id = server.readLine(after(ampleTimeout));
  ASSERT_TRUE(id);
  EXPECT_EQ(::getpgid(std::stoi(*id)), std::stoi(*id));
}

// Fails when a program that was started in the background hears of Ctrl-C.
TEST_F(ServerProcessTest, IgnoresASignalThatItWasStartedToIgnore) {
  const auto former = ::signal(SIGINT, SIG_IGN);
  {
    Interruption ignorant;
    ::raise(SIGINT);
    EXPECT_FALSE(ignorant.wait({}, after(shortTimeout)));
  }
  ::signal(SIGINT, former);
}

TEST_F(ServerProcessTest, StopsWaitingAtASignal) {
  ServerProcess echo("/bin/cat", log, interruption);
  ::raise(SIGINT);
  try {
    (void)echo.readLine(after(ampleTimeout));
    FAIL() << "not interrupted";
  } catch (const Interrupted& interrupted) {
    EXPECT_EQ(interrupted.signal, SIGINT);
  }
  EXPECT_TRUE(interruption.happened());
}

}  // namespace
}  // namespace corvane::testing
