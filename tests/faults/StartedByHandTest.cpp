#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>

#include <string>

#include "tests/faults/FaultTest.h"
#include "tests/support/ShellOutput.h"

namespace corvane::testing {
namespace {

/// The server in the hands of a person.
class StartedByHandTest : public FaultTest {
 protected:
  /// What the program prints with this argument, and then how it ended.
  [[nodiscard]] std::string answerTo(const std::string& argument) const {
    std::string line = "env";
    for (const auto& variable : homeVariables(home.path())) line += " '" + variable + "'";
    return shellOutput(line + " '" + program().string() + "' " + argument +
                       " </dev/null 2>&1; echo \"status $?\"");
  }
};

TEST_F(StartedByHandTest, TellsItsVersion) {
  EXPECT_EQ(answerTo("--version"), "corvane-mcp 0.2.0\nstatus 0\n");
  // Nothing is begun for that, not even the folders.
  EXPECT_TRUE(home.entries().empty());
}

TEST_F(StartedByHandTest, TellsWhatItIs) {
  EXPECT_EQ(answerTo("--help"),
            "Usage: corvane-mcp [OPTION]\n\n"
            "A server of the Model Context Protocol through which agents write and run tests in "
            "Corvane.app.\n\n"
            "An MCP client starts it and talks to it on standard input and output; it ends when "
            "its input does. It writes its log to standard error and to "
            "~/Library/Logs/Corvane/mcp.log.\n\n"
            "Name this program as a server in the settings of your MCP client, or use the same "
            "tools from a terminal with corvanectl.\n\n"
            "Options:\n"
            "  --help     Print what this program is and end\n"
            "  --version  Print the version and end\nstatus 0\n");
}

// Fails when any argument ends the server.
TEST_F(StartedByHandTest, GoesOnBesideOtherArguments) {
  EXPECT_TRUE(answerTo("--verbose").ends_with("status 0\n"));
  EXPECT_EQ(answerTo("--verbose").find("Usage"), std::string::npos);
  EXPECT_EQ(answerTo("--help --version").find("Usage"), std::string::npos);
}

// Fails when it says so to a client, or again and again.
TEST_F(StartedByHandTest, SaysOnATerminalThatItWaitsForAClient) {
  const FileDescriptor keyboard(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_EQ(::grantpt(keyboard.get()), 0);
  ASSERT_EQ(::unlockpt(keyboard.get()), 0);
  auto onTerminal = setup();
  onTerminal.input =
      FileDescriptor(::open(::ptsname(keyboard.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios modes{};
  ASSERT_EQ(::tcgetattr(onTerminal.input.get(), &modes), 0);
  ServerProcess server(std::move(onTerminal));
  const std::string line = ping(1) + "\n" + static_cast<char>(modes.c_cc[VEOF]);
  ASSERT_EQ(::write(keyboard.get(), line.data(), line.size()), static_cast<ssize_t>(line.size()));
  EXPECT_EQ(server.readToEnd(), std::vector<std::string>{pong(1)});
  EXPECT_EQ(server.wait(), "exit 0");
  const std::string words =
      "corvane-mcp: A server of the Model Context Protocol through which agents write and run "
      "tests in Corvane.app. It waits for a client, and there is none on a terminal. Name this "
      "program as a server in the settings of your MCP client, or use the same tools from a "
      "terminal with corvanectl. Ctrl-D ends it.\n";
  EXPECT_EQ(server.errors().substr(0, words.size()), words);
  EXPECT_EQ(server.errors().find("corvane-mcp: A server", 1), std::string::npos);

  ServerProcess served(setup());
  served.closeInput();
  EXPECT_EQ(served.wait(), "exit 0");
  EXPECT_EQ(served.errors().find("corvane-mcp: A server"), std::string::npos);
}

}  // namespace
}  // namespace corvane::testing
