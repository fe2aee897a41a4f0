#include <gtest/gtest.h>

#include <filesystem>

#include "ProgramRun.h"
#include "corvanectl/setup/Clients.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;
using namespace ctl;

/// Where applications with windows keep their configurations.
#ifdef __APPLE__
const std::string applications = "Library/Application Support/";
#else
const std::string applications = ".config/";
#endif

/// corvanectl in a home with clients in it. The server is a program called SERVER there.
class SetupTest : public ::testing::Test {
 protected:
  SetupTest() {
    TestFiles::write(server(), "#!/bin/sh\n");
    TestFiles::setMode(server(), 0755);
  }

  [[nodiscard]] fs::path server() const { return home.path() / "corvane-mcp"; }
  [[nodiscard]] fs::path at(const std::string& path) const { return home.path() / path; }
  [[nodiscard]] std::string text(const std::string& path) const {
    return TestFiles::read(at(path));
  }

  /// What is expected, with the server's path in the place of SERVER.
  [[nodiscard]] std::string filledIn(std::string expected) const {
    for (std::size_t i = 0; (i = expected.find("SERVER", i)) != std::string::npos;) {
      expected.replace(i, 6, server().string());
    }
    return expected;
  }

  [[nodiscard]] ProgramRun setup(std::vector<std::string> arguments,
                                 const std::vector<std::string>& variables = {}) const {
    arguments.insert(arguments.begin(), {"setup", "--server", server()});
    std::vector<std::string> environment = homeVariables(home.path());
    environment.emplace_back("PATH=/usr/bin:/bin");
    environment.insert(environment.end(), variables.begin(), variables.end());
    return runCorvanectl(arguments, {}, environment);
  }

  /// Sets `client` up and takes it back: the file goes from `before` to `after` and back.
  void expectChange(const std::string& client, const std::string& file, const std::string& before,
                    const std::string& after) const {
    TestFiles::write(at(file), before);
    EXPECT_EQ(setup({client}).status, 0) << client;
    EXPECT_EQ(text(file), filledIn(after)) << client;
    EXPECT_EQ(text(file + ".corvane-backup"), before) << client;
    const auto again = setup({client});
    EXPECT_EQ(again.status, 0);
    EXPECT_NE(again.output.find("names 'corvane' already\n"), std::string::npos) << again.output;
    EXPECT_EQ(text(file), filledIn(after)) << client;
    EXPECT_EQ(setup({client, "--remove"}).status, 0) << client;
    EXPECT_EQ(text(file), before) << client;
    EXPECT_FALSE(fs::exists(at(file + ".corvane-backup"))) << client;
  }

  const TemporaryHome home;
};

TEST_F(SetupTest, ClaudeCode) {
  expectChange(
      "claude-code", ".claude.json",
      "{\n  \"numStartups\": 3,\n  \"projects\": {\n    \"/p\": {\n      \"mcpServers\": {}\n"
      "    }\n  }\n}\n",
      "{\n  \"numStartups\": 3,\n  \"projects\": {\n    \"/p\": {\n      \"mcpServers\": {}\n"
      "    }\n  },\n  \"mcpServers\": {\n    \"corvane\": {\n      \"type\": \"stdio\",\n"
      "      \"command\": \"SERVER\"\n    }\n  }\n}\n");
}

TEST_F(SetupTest, ClaudeDesktop) {
  expectChange(
      "claude-desktop", applications + "Claude/claude_desktop_config.json",
      "{\n  \"mcpServers\": {\n    \"files\": {\n      \"command\": \"npx\"\n    }\n  }\n}",
      "{\n  \"mcpServers\": {\n    \"files\": {\n      \"command\": \"npx\"\n    },\n"
      "    \"corvane\": {\n      \"command\": \"SERVER\"\n    }\n  }\n}");
}

TEST_F(SetupTest, Cursor) {
  expectChange("cursor", ".cursor/mcp.json", "{\"mcpServers\": {\"a\": {\"url\": \"u\"}}}",
               "{\"mcpServers\": {\"a\": {\"url\": \"u\"},\"corvane\":{\"type\":\"stdio\","
               "\"command\":\"SERVER\"}}}");
}

TEST_F(SetupTest, VisualStudioCode) {
  expectChange("vscode", applications + "Code/User/mcp.json",
               "{\n\t// mine\n\t\"servers\": {\n\t\t\"a\": {}, // a\n\t},\n\t\"inputs\": []\n}\n",
               "{\n\t// mine\n\t\"servers\": {\n\t\t\"a\": {}, // a\n\t\t\"corvane\": {\n"
               "\t\t\t\"type\": \"stdio\",\n\t\t\t\"command\": \"SERVER\"\n\t\t},\n\t},\n"
               "\t\"inputs\": []\n}\n");
}

TEST_F(SetupTest, Codex) {
  expectChange("codex", ".codex/config.toml", "model = \"o\" # mine\r\n[tui]\r\nx = 1",
               "model = \"o\" # mine\r\n[tui]\r\nx = 1\r\n\r\n[mcp_servers.corvane]\r\n"
               "command = \"SERVER\"\r\ntool_timeout_sec = 300\r\n");
}

TEST_F(SetupTest, GeminiCli) {
  expectChange("gemini", ".gemini/settings.json", "{ /* mine */ }",
               "{ /* mine */\n  \"mcpServers\": {\n    \"corvane\": {\n"
               "      \"command\": \"SERVER\"\n    }\n  }\n}");
}

TEST_F(SetupTest, Windsurf) {
  expectChange("windsurf", ".codeium/windsurf/mcp_config.json", "\xEF\xBB\xBF{\r\n}",
               "\xEF\xBB\xBF{\r\n  \"mcpServers\": {\r\n    \"corvane\": {\r\n"
               "      \"command\": \"SERVER\",\r\n      \"args\": []\r\n    }\r\n  }\r\n}");
}

TEST_F(SetupTest, Zed) {
  expectChange("zed", ".config/zed/settings.json",
               "// Zed settings\n{\n  \"theme\": \"One\", // dark\n}\n",
               "// Zed settings\n{\n  \"theme\": \"One\", // dark\n  \"context_servers\": {\n"
               "    \"corvane\": {\n      \"command\": \"SERVER\",\n      \"args\": []\n    }\n"
               "  },\n}\n");
}

TEST_F(SetupTest, AnEmptyFileBecomesEmptyAgain) {
  expectChange("cursor", ".cursor/mcp.json", "",
               "{\n  \"mcpServers\": {\n    \"corvane\": {\n      \"type\": \"stdio\",\n"
               "      \"command\": \"SERVER\"\n    }\n  }\n}\n");
}

TEST_F(SetupTest, AFileThatWasNotThereGoesAgain) {
  const auto run = setup({"codex"});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_EQ(run.output,
            filledIn("Codex: " + at(".codex/config.toml").string() +
                     "\n+ [mcp_servers.corvane]\n+ command = \"SERVER\"\n+ tool_timeout_sec = 300\n"
                     "Clients that run read this when they start anew.\n"));
  EXPECT_EQ(TestFiles::mode(at(".codex/config.toml")), 0600U);
  EXPECT_EQ(setup({"codex", "--remove"}).status, 0);
  EXPECT_FALSE(fs::exists(at(".codex/config.toml")));
}

// Fails when the backup of the first change gives way to that of the second.
TEST_F(SetupTest, TheBackupStaysTheFileWithoutTheEntry) {
  TestFiles::write(at(".cursor/mcp.json"), "{}");
  EXPECT_EQ(setup({"cursor"}).status, 0);
  const std::vector<std::string> another{"setup", "cursor", "--server", "/bin/sh"};
  EXPECT_EQ(runCorvanectl(another, {}, homeVariables(home.path())).status, 0);
  EXPECT_NE(text(".cursor/mcp.json").find("/bin/sh"), std::string::npos);
  EXPECT_EQ(text(".cursor/mcp.json.corvane-backup"), "{}");
  EXPECT_EQ(setup({"cursor", "--remove"}).status, 0);
  EXPECT_EQ(text(".cursor/mcp.json"), "{}");
}

// Fails when the backup is put back over what was changed since.
TEST_F(SetupTest, WhatWasChangedSinceStays) {
  TestFiles::write(at(".cursor/mcp.json"), "{\"a\":1}");
  EXPECT_EQ(setup({"cursor"}).status, 0);
  std::string changed = text(".cursor/mcp.json");
  changed.replace(changed.find('1'), 1, "2");
  TestFiles::write(at(".cursor/mcp.json"), changed);
  EXPECT_EQ(setup({"cursor", "--remove"}).status, 0);
  EXPECT_EQ(text(".cursor/mcp.json"), "{\"a\":2,\"mcpServers\":{}}");
  EXPECT_EQ(text(".cursor/mcp.json.corvane-backup"), changed);
}

TEST_F(SetupTest, ChangesAllClientsThatAreFound) {
  EXPECT_EQ(setup({}).status, 1);
  fs::create_directories(at(".claude"));
  fs::create_directories(at(".config/zed"));
  const auto run = setup({});
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.output.find("Claude Code: "), std::string::npos);
  EXPECT_NE(run.output.find("Zed: "), std::string::npos);
  EXPECT_EQ(run.output.find("Cursor"), std::string::npos);
  EXPECT_TRUE(fs::exists(at(".claude.json")));
  EXPECT_TRUE(fs::exists(at(".config/zed/settings.json")));
}

TEST_F(SetupTest, PrintingChangesNothing) {
  TestFiles::write(at(".cursor/mcp.json"), "{\n  \"a\": 1\n}\n");
  const auto before = home.entries();
  const auto run = setup({"cursor", "--print", "--name", "trial"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(
      run.output,
      filledIn("Cursor: " + at(".cursor/mcp.json").string() +
               "\n-   \"a\": 1\n+   \"a\": 1,\n+   \"mcpServers\": {\n+     \"trial\": {\n"
               "+       \"type\": \"stdio\",\n+       \"command\": \"SERVER\"\n+     }\n+   }\n"
               "Nothing has been changed.\n"));
  EXPECT_EQ(text(".cursor/mcp.json"), "{\n  \"a\": 1\n}\n");
  EXPECT_EQ(home.entries(), before);
}

TEST_F(SetupTest, WhatIsBrokenIsLeftAloneAndTheOthersAreDone) {
  TestFiles::write(at(".claude.json"), "{\n  \"a\": }\n");
  TestFiles::write(at(".cursor/mcp.json"), "{}");
  const auto run = setup({});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, "corvanectl: " + at(".claude.json").string() +
                            ", line 2, column 8: not valid JSON: unexpected text at byte 9. It is "
                            "left as it is\n");
  EXPECT_EQ(text(".claude.json"), "{\n  \"a\": }\n");
  EXPECT_NE(text(".cursor/mcp.json"), "{}");
}

// Fails when a link gives way to a file, or permissions become others.
TEST_F(SetupTest, LinksAndPermissionsStay) {
  TestFiles::write(at("dotfiles/cursor.json"), "{}");
  TestFiles::setMode(at("dotfiles/cursor.json"), 0664);
  fs::create_directories(at(".cursor"));
  fs::create_symlink("../dotfiles/link", at(".cursor/mcp.json"));
  fs::create_symlink("cursor.json", at("dotfiles/link"));
  EXPECT_EQ(setup({"cursor"}).status, 0);
  EXPECT_EQ(fs::read_symlink(at(".cursor/mcp.json")), "../dotfiles/link");
  EXPECT_EQ(fs::read_symlink(at("dotfiles/link")), "cursor.json");
  EXPECT_NE(text("dotfiles/cursor.json"), "{}");
  EXPECT_EQ(TestFiles::mode(at("dotfiles/cursor.json")), 0664U);
  EXPECT_EQ(setup({"cursor", "--remove"}).status, 0);
  EXPECT_EQ(text("dotfiles/cursor.json"), "{}");
  EXPECT_EQ(TestFiles::mode(at("dotfiles/cursor.json")), 0664U);
}

// Fails when a link that leads in a circle gives way to a file.
TEST_F(SetupTest, LinksInACircleStay) {
  fs::create_directories(at(".cursor"));
  fs::create_symlink("circle", at(".cursor/circle"));
  fs::create_symlink("circle", at(".cursor/mcp.json"));
  const auto run = setup({"cursor"});
  EXPECT_EQ(run.status, 74);
  EXPECT_EQ(run.errors, "corvanectl: could not write " + at(".cursor/mcp.json").string() +
                            ": Too many levels of symbolic links\n");
  EXPECT_TRUE(fs::is_symlink(at(".cursor/circle")));
}

TEST_F(SetupTest, TellsOfAFileThatCannotBeRead) {
  fs::create_directories(at(".cursor/mcp.json"));
  const auto run = setup({"cursor"});
  EXPECT_EQ(run.status, 74);
  EXPECT_EQ(run.errors,
            "corvanectl: could not read " + at(".cursor/mcp.json").string() + ": Is a directory\n");
}

TEST_F(SetupTest, KnowsItsClientsAndNames) {
  const auto unknown = setup({"curser"});
  EXPECT_EQ(unknown.status, 64);
  EXPECT_EQ(unknown.errors,
            "corvanectl: there is no client 'curser'. Did you mean 'cursor'? Known are "
            "claude-code, claude-desktop, cursor, vscode, codex, gemini, windsurf, zed\n");
  EXPECT_EQ(setup({"cursor", "--name", "a.b"}).status, 64);
  EXPECT_EQ(
      runCorvanectl({"setup", "cursor", "--server", at("nothing")}, {}, homeVariables(home.path()))
          .status,
      64);
}

TEST_F(SetupTest, ClientsAreFoundWhereTheirVariablesSay) {
  const auto folder = [this](const std::string& variable, const std::string& path) {
    return std::vector{variable + "=" + at(path).string()};
  };
  EXPECT_EQ(setup({"codex"}, folder("CODEX_HOME", "c")).status, 0);
  EXPECT_TRUE(fs::exists(at("c/config.toml")));
  EXPECT_EQ(setup({"claude-code"}, folder("CLAUDE_CONFIG_DIR", "d")).status, 0);
  EXPECT_TRUE(fs::exists(at("d/.claude.json")));
#ifndef __APPLE__
  EXPECT_EQ(setup({"zed", "vscode"}, folder("XDG_CONFIG_HOME", "x")).status, 0);
  EXPECT_TRUE(fs::exists(at("x/zed/settings.json")));
  EXPECT_TRUE(fs::exists(at("x/Code/User/mcp.json")));
#endif
}

TEST(Clients, HaveTheirFilesWhereMacOSKeepsThem) {
  const ClientFolders folders{.home = "/U/m",
                              .dotConfig = "/U/m/.config",
                              .applications = "/U/m/Library/Application Support"};
  std::string files;
  for (const Client& client : allClients()) {
    files += configurationFile(client, folders).string() + "\n";
  }
  EXPECT_EQ(files,
            "/U/m/.claude.json\n"
            "/U/m/Library/Application Support/Claude/claude_desktop_config.json\n"
            "/U/m/.cursor/mcp.json\n"
            "/U/m/Library/Application Support/Code/User/mcp.json\n"
            "/U/m/.codex/config.toml\n"
            "/U/m/.gemini/settings.json\n"
            "/U/m/.codeium/windsurf/mcp_config.json\n"
            "/U/m/.config/zed/settings.json\n");
}

}  // namespace
}  // namespace corvane::testing
