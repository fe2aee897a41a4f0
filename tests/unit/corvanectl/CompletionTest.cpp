#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "StandInHome.h"
#include "corvanectl/terminal/ShellWord.h"
#include "tests/support/ShellOutput.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

bool isInstalled(const std::string& program) {
  return ::access(("/usr/bin/" + program).c_str(), X_OK) == 0;
}

/// Shells that complete lines of corvanectl, in a home with a workspace.
class CompletionTest : public ::testing::Test {
 protected:
  CompletionTest() {
    writeFileWhole(
        home.paths().agentContextFile(),
        R"({"schemaVersion":1,"updatedAt":"2026-01-31T12:00:00Z","currentProjectName":"Blog",)"
        R"("projects":[{"name":"Corner Shop","suites":[{"name":"Smoke","testIds":[]}],"tests":[)"
        R"({"id":"1","name":"Sign in","steps":[]},{"id":"2","name":"It's $5 & more","steps":[]}]},)"
        R"({"name":"Blog","suites":[],"tests":[{"id":"3","name":"Post","steps":[]}]}]})");
  }

  /// What a shell prints that is given this script.
  [[nodiscard]] std::string output(const std::vector<std::string>& shell,
                                   const std::string& script) const {
    std::string line = "env -i";
    for (const auto& variable : home.environment()) line += " " + ctl::shellWord(variable);
    const std::string programs = fs::path(CORVANECTL_PROGRAM).parent_path();
    line += " PATH=" + ctl::shellWord(programs + ":/usr/bin:/bin") + " TERM=dumb";
    for (const auto& each : shell) line += " " + ctl::shellWord(each);
    line += " -c " + ctl::shellWord(script) + " 2>/dev/null";
    return shellOutput(line);
  }

  /// What bash would complete the last of these words with, a line each.
  [[nodiscard]] std::string inBash(const std::vector<std::string>& words) const {
    std::string script = "source " +
                         ctl::shellWord(MANUAL_SHARE "/bash-completion/completions/corvanectl") +
                         "; COMP_WORDS=(corvanectl";
    for (const auto& each : words) script += " " + ctl::shellWord(each);
    return output({"bash", "--norc"}, script + "); COMP_CWORD=" + std::to_string(words.size()) +
                                          "; _corvanectl; printf '%s\\n' \"${COMPREPLY[@]}\"");
  }

  const StandInHome home;
};

TEST_F(CompletionTest, BashCompletesCommandsAndOptions) {
  EXPECT_EQ(inBash({"st"}), "status\n");
  EXPECT_EQ(inBash({"show", "--p"}), "--pictures\n");
  EXPECT_EQ(inBash({"run", "--platform", "a"}), "android\n");
  EXPECT_EQ(inBash({"--log", "--timeout", "3", "doc"}), "doctor\n");
  EXPECT_EQ(inBash({"help", "ret"}), "retry\n");
  EXPECT_EQ(inBash({"call", "desc"}), "describe_project\n");
  EXPECT_EQ(inBash({"setup", "cu"}), "cursor\n");
}

// Fails when names are not fit to stand on the line, or another project's are offered.
TEST_F(CompletionTest, BashCompletesNames) {
  EXPECT_EQ(inBash({"run", "Co"}), "Corner\\ Shop\n");
  EXPECT_EQ(inBash({"run", "\"Co"}), "Corner Shop\n");
  EXPECT_EQ(inBash({"run", "Corner\\ Shop", "--test", ""}),
            "Sign\\ in\nIt\\'s\\ \\$5\\ \\&\\ more\n");
  EXPECT_EQ(inBash({"run", "'Corner Shop'", "--test", "x", "Sign\\ "}), "Sign\\ in\n");
  EXPECT_EQ(inBash({"run", "Corner\\ Shop", "--suite", "S"}), "Smoke\n");
  EXPECT_EQ(inBash({"run", "--test", "P"}), "Post\n");
  // The project is the first argument, whatever stands there besides.
  EXPECT_EQ(inBash({"run", "Corner\\ Shop", "Blog", "--test", "S"}), "Sign\\ in\n");
  EXPECT_EQ(inBash({"show", "l"}), "last\n");
}

TEST_F(CompletionTest, BashIsToldWhatToComplete) {
  EXPECT_EQ(
      output({"bash", "--norc"},
             "source " + ctl::shellWord(MANUAL_SHARE "/bash-completion/completions/corvanectl") +
                 "; complete -p corvanectl"),
      "complete -F _corvanectl corvanectl\n");
}

TEST_F(CompletionTest, FishCompletesWhatTheLineBegins) {
  if (!isInstalled("fish")) GTEST_SKIP() << "needs fish";
  const auto inFish = [this](const std::string& line) {
    return output({"fish", "--no-config"},
                  "source " +
                      ctl::shellWord(MANUAL_SHARE "/fish/vendor_completions.d/corvanectl.fish") +
                      "; complete -C " + ctl::shellWord(line) + " | string replace -r '\\t.*' ''");
  };
  EXPECT_EQ(inFish("corvanectl st"), "status\n");
  EXPECT_EQ(inFish("corvanectl show --p"), "--pictures\n");
  EXPECT_EQ(inFish("corvanectl run Co"), "Corner Shop\n");
  EXPECT_EQ(inFish("corvanectl run 'Corner Shop' --test Si"), "Sign in\n");
  EXPECT_EQ(inFish("corvanectl run 'Corner Shop' --platform a"), "android\n");
}

// A shell in a terminal of its own, as zsh completes nothing without one.
TEST_F(CompletionTest, ZshCompletesWhatTheLineBegins) {
  if (!isInstalled("zsh")) GTEST_SKIP() << "needs zsh";
  const auto inZsh = [this](const std::string& line) {
    const std::string folder = MANUAL_SHARE "/zsh/site-functions";
    return output({"zsh", "-f"},
                  "zmodload zsh/zpty; zpty z zsh -f -i; "
                  "zpty -w z \"PS1= ; fpath=(" +
                      folder +
                      " \\$fpath); autoload -Uz compinit; "
                      "compinit -u -D; stty -echo; bindkey '^I' complete-word; "
                      "show() { print -r -- \\\"<\\$BUFFER>\\\"; zle kill-buffer }; zle -N show; "
                      "bindkey '^X' show; print rea''dy\"; "
                      "zpty -r z text '*ready*'; "
                      "zpty -w -n z " +
                      ctl::shellWord(line) +
                      "$'\\t\\x18'; zpty -r z text '*<*>*'; "
                      "print -r -- ${${text##*<}%%>*}");
  };
  EXPECT_EQ(inZsh("corvanectl stat"), "corvanectl status \n");
  EXPECT_EQ(inZsh("corvanectl run Cor"), "corvanectl run Corner\\ Shop \n");
  EXPECT_EQ(inZsh("corvanectl run Corner\\ Shop --test Sig"),
            "corvanectl run Corner\\ Shop --test Sign\\ in \n");
  EXPECT_EQ(inZsh("corvanectl show --pic"), "corvanectl show --pictures \n");
}

/// What mandoc has to say about a manual page; nothing where all is well or there is no mandoc.
TEST_F(CompletionTest, ManualPagesAreSound) {
  for (const std::string name : {"corvanectl", "corvane-mcp", "corvane_standin"}) {
    const fs::path page = fs::path(MANUAL_SHARE) / "man" / "man1" / (name + ".1");
    const std::string text = readFile(page);
    EXPECT_NE(text.find(".SH NAME\n"), std::string::npos) << name;
    if (!isInstalled("mandoc")) continue;
    EXPECT_EQ(
        output({"sh"}, "mandoc -T lint -W warning " + ctl::shellWord(page.string()) + " 2>&1"), "");
  }
  const std::string client = readFile(fs::path(MANUAL_SHARE) / "man" / "man1" / "corvanectl.1");
  for (const char* told : {"doctor", "\\-\\-pictures", "\\-\\-unchecked", ".SH EXIT STATUS"}) {
    EXPECT_NE(client.find(told), std::string::npos) << told;
  }
  // What shells call is not for people.
  EXPECT_EQ(client.find("corvanectl names"), std::string::npos);
}

}  // namespace
}  // namespace corvane::testing
