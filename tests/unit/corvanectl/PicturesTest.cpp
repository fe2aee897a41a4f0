#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

#include <cerrno>

#include "CorvaneCore/files/Files.h"
#include "FakeServerScript.h"
#include "ProgramRun.h"
#include "corvanectl/commands/ResultOutput.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Umask.h"

namespace corvane::testing {
namespace {

using namespace ctl;

class SavedPicturesTest : public ::testing::Test {
 protected:
  ResultOutput output(const std::optional<std::filesystem::path>& folder, std::string_view tool) {
    return {console, tool, folder, nullptr};
  }
  /// What stands for a picture of these bytes in base64.
  static std::string line(ResultOutput& output, std::string data, std::string mimeType) {
    std::string text;
    output.append(ToolResult::Image{std::move(data), std::move(mimeType)}, text);
    return text;
  }

  TemporaryDirectory directory;
  Interruption interruption;
  Console console{interruption};
};

TEST_F(SavedPicturesTest, AreNamedByKindAndSizeWithoutAFolder) {
  auto pictures = output(std::nullopt, "get_result");
  EXPECT_EQ(line(pictures, "Zm9vYmFy", "image/jpeg"), "[image/jpeg, 6 bytes]");
  EXPECT_EQ(line(pictures, "???", "image/jpeg"),
            "[image/jpeg, not readable: its data is no base64]");
}

TEST_F(SavedPicturesTest, AreSavedUnderTheirNumbers) {
  const auto folder = directory.path() / "new" / "shots";
  auto pictures = output(folder, "get_result");
  EXPECT_EQ(line(pictures, "Zm9v", "image/jpeg"), folder / "get_result-1.jpg");
  EXPECT_EQ(line(pictures, "YmFy", "image/png"), folder / "get_result-2.png");
  EXPECT_EQ(readFile(folder / "get_result-1.jpg"), "foo");
  EXPECT_EQ(readFile(folder / "get_result-2.png"), "bar");
}

/// The caption of a step's pictures.
std::string caption(int step, const std::string& moments) {
  return "step " + std::to_string(step) + " screenshots (" + moments +
         ") — corner brackets mark where Corvane touched (drags also draw a line to the end point)";
}

// Fails when pictures of several steps are named by the order in which they come.
TEST_F(SavedPicturesTest, AreNamedForTestStepAndMoment) {
  auto pictures = output(directory.path(), "Sign in / <b>🎉");
  std::string text;
  pictures.append(ToolResult::Text{caption(12, "before, after")}, text);
  EXPECT_EQ(line(pictures, "Zm9v", "image/jpeg"),
            directory.path() / "Sign-in----b---step-12-before.jpg");
  EXPECT_EQ(line(pictures, "Zm9v", "image/png"),
            directory.path() / "Sign-in----b---step-12-after.png");
  pictures.append(ToolResult::Text{caption(3, "after")}, text);
  EXPECT_EQ(line(pictures, "Zm9v", "image/jpeg"),
            directory.path() / "Sign-in----b---step-3-after.jpg");
  pictures.append(ToolResult::Text{caption(3, "after")}, text);
  EXPECT_EQ(line(pictures, "Zm9v", "image/jpeg"),
            directory.path() / "Sign-in----b---step-3-after-2.jpg");
  // One that no caption speaks of.
  EXPECT_EQ(line(pictures, "Zm9v", "image/jpeg"), directory.path() / "Sign-in----b---1.jpg");
}

// Fails when a name may be longer than file systems take, with a number behind it.
TEST_F(SavedPicturesTest, HaveNamesThatFileSystemsTake) {
  const std::string name = pictureFileName(std::string(300, 'x'), 10'000, "before", ".jpg");
  EXPECT_LE(name.size(), 255U - 10U);
  EXPECT_TRUE(name.ends_with("xx-step-10000-before.jpg")) << name;
}

TEST_F(SavedPicturesTest, OverwriteNothing) {
  writeFileWhole(directory.path() / "x-1.jpg", "old");
  auto pictures = output(directory.path(), "x");
  EXPECT_EQ(line(pictures, "Zm9v", "image/jpeg"), directory.path() / "x-2.jpg");
  EXPECT_EQ(readFile(directory.path() / "x-1.jpg"), "old");
}

// Fails when they are as private as what the server writes: they are made to be shown around.
TEST_F(SavedPicturesTest, AreForWhomeverTheUmaskLets) {
  const Umask usual(022);
  const auto folder = directory.path() / "shots";
  auto pictures = output(folder, "x");
  (void)line(pictures, "Zm9v", "image/jpeg");
  EXPECT_EQ(TestFiles::mode(folder), 0755U);
  EXPECT_EQ(TestFiles::mode(folder / "x-1.jpg"), 0644U);
}

TEST_F(SavedPicturesTest, StayInsideTheirFolder) {
  auto pictures = output(directory.path(), "../../a.b/c");
  EXPECT_EQ(line(pictures, "Zm9v", "image/jpeg"), directory.path() / "------a-b-c-1.jpg");
}

TEST_F(SavedPicturesTest, ReportAFolderThatCannotBe) {
  writeFileWhole(directory.path() / "file", "");
  auto pictures = output(directory.path() / "file", "x");
  EXPECT_THROW((void)line(pictures, "Zm9v", "image/jpeg"), FileError);
}

/// With a PATH of one folder, in which a test may put a chafa of its own.
class ShownPicturesTest : public ::testing::Test {
 protected:
  ShownPicturesTest() {
    const char* path = ::getenv("PATH");
    formerPath = path ? path : "";
    ::setenv("PATH", (directory.path() / "bin").c_str(), 1);
    ::setenv("TERM", "xterm", 1);
  }
  ~ShownPicturesTest() override { ::setenv("PATH", formerPath.c_str(), 1); }

  /// Makes `commands` of the shell what chafa does after it has written down its arguments.
  void installChafa(const std::string& commands) {
    const auto program = directory.path() / "bin" / "chafa";
    writeFileWhole(program, "#!/bin/sh\nprintf '%s\\n' \"$@\" >>" + record().string() + "\n" +
                                commands + "\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  }
  /// What the chafas that were started have written down; empty when none was.
  [[nodiscard]] std::string started() const {
    return fileExists(record()) ? readFile(record()) : std::string();
  }
  [[nodiscard]] std::filesystem::path record() const { return directory.path() / "record"; }
  [[nodiscard]] std::filesystem::path shots() const { return directory.path() / "shots"; }
  [[nodiscard]] std::string shot() const { return shots() / "x-1.jpg"; }

  /// Runs a tool call at the terminal and gives what was shown, which ends with `end`.
  std::string call(const std::vector<std::string>& more, std::string_view end = lastLine) {
    const FakeServerScript script(answer);
    std::vector<std::string> arguments{"--server", FakeServerScript::program(), "call", "x"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const int program = terminal.start(arguments);
    const std::string shown = terminal.readUntil(end);
    EXPECT_EQ(waitForStatus(program), 0);
    EXPECT_TRUE(hasUsualModes(side));
    return shown;
  }

  static constexpr std::string_view picture =
      R"({"type":"image","data":"Zm9v","mimeType":"image/jpeg"})";
  static constexpr std::string_view lastLine = "[end]\r\n";

  TemporaryDirectory directory;
  /// A picture, and a block that shows as the last line.
  std::vector<std::string> answer =
      greeted({"expect tools/call", "result {\"content\":[" + std::string(picture) +
                                        R"(,{"type":"end"}],"isError":false})"});
  Pseudoterminal terminal{80};
  FileDescriptor side = terminal.anotherSide();
  std::string formerPath;
};

TEST_F(ShownPicturesTest, StandAboveTheirPath) {
  installChafa("echo the picture");
  EXPECT_EQ(call({"--pictures", shots()}), "the picture\r\n" + shot() + "\r\n[end]\r\n");
  EXPECT_EQ(started(), "--animate=off\n--size=80x21\n--\n" + shot() + "\n");
  EXPECT_EQ(readFile(shot()), "foo");
}

TEST_F(ShownPicturesTest, StandBelowWhatComesBefore) {
  installChafa("echo the picture");
  answer = greeted({"expect tools/call", R"(result {"content":[{"type":"text","text":"before"},)" +
                                             std::string(picture) +
                                             R"(,{"type":"end"}],"isError":false})"});
  EXPECT_EQ(call({}), "before\r\nthe picture\r\n[image/jpeg, 3 bytes]\r\n[end]\r\n");
}

TEST_F(ShownPicturesTest, AreInAFileOnlyWhileTheyAreShown) {
  installChafa(
      "read -r bytes <\"$4\"; echo \"$bytes\"; [ -t 0 ] && echo asks; read -r _ && echo asks");
  EXPECT_EQ(call({}), "foo\r\n[image/jpeg, 3 bytes]\r\n[end]\r\n");
  const std::string arguments = started();
  const std::string file = arguments.substr(arguments.find("--\n") + 3);
  EXPECT_TRUE(file.starts_with('/')) << arguments;
  EXPECT_FALSE(fileExists(file.substr(0, file.size() - 1)));
}

TEST_F(ShownPicturesTest, AreOnlyMissedWhenChafaFails) {
  installChafa("echo no >&2; exit 3");
  EXPECT_EQ(call({"--pictures", shots()}), shot() + "\r\n[end]\r\n");
}

TEST_F(ShownPicturesTest, LeaveATidyScreenWhenChafaCrashes) {
  installChafa("printf half; kill -SEGV $$");
  EXPECT_EQ(call({"--pictures", shots()}), "half\033\\\033[m\r\033[K" + shot() + "\r\n[end]\r\n");
}

TEST_F(ShownPicturesTest, AreOnlyMissedWhenChafaCannotBeStarted) {
  installChafa("");
  writeFileWhole(directory.path() / "bin" / "chafa", "#!/nowhere/shell\n");
  std::filesystem::permissions(directory.path() / "bin" / "chafa",
                               std::filesystem::perms::owner_all);
  EXPECT_EQ(call({"--pictures", shots()}), shot() + "\r\n[end]\r\n");
}

TEST_F(ShownPicturesTest, NeedChafaAsIsSaidOnce) {
  answer = greeted({"expect tools/call", "result {\"content\":[" + std::string(picture) + "," +
                                             std::string(picture) +
                                             R"(,{"type":"end"}],"isError":false})"});
  const FakeServerScript script(answer);
  const int program = terminal.start({"--server", FakeServerScript::program(), "call", "x"});
  EXPECT_EQ(terminal.readUntil(lastLine),
            "corvanectl: install chafa to see pictures here\r\n"
            "[image/jpeg, 3 bytes]\r\n[image/jpeg, 3 bytes]\r\n[end]\r\n");
  EXPECT_EQ(waitForStatus(program), 0);
}

TEST_F(ShownPicturesTest, AreNotForATerminalThatOnlyPrints) {
  installChafa("echo the picture");
  terminal.setKind("dumb");
  EXPECT_EQ(call({"--pictures", shots()}), shot() + "\r\n[end]\r\n");
  EXPECT_EQ(started(), "");
}

TEST_F(ShownPicturesTest, AreNotAmongJson) {
  installChafa("echo the picture");
  EXPECT_EQ(call({"--pictures", shots(), "--json"}, "}\r\n"),
            R"({"content":[{"data":"Zm9v","mimeType":"image/jpeg","type":"image"},{"type":"end"}],)"
            R"("isError":false})"
            "\r\n");
  EXPECT_EQ(started(), "");
}

TEST_F(ShownPicturesTest, AreNotBesideJson) {
  installChafa("echo the picture");
  const std::string known = R"({"type":"text","text":"status: passed (terminal)\n\n{}"})";
  const FakeServerScript script(greeted(
      {"expect tools/call", "result {\"content\":[" + known + "]}", "expect tools/call",
       "result {\"content\":[" + known + "," + std::string(picture) + R"(,{"type":"end"}]})"}));
  const int program =
      terminal.start({"--server", FakeServerScript::program(), "follow",
                      "0a1b2c3d-0000-4000-8000-00000000abcd", "--json", "--pictures", shots()});
  EXPECT_EQ(terminal.readUntil(lastLine),
            "{}\r\n" + (shots() / "get_result-1.jpg").string() + "\r\n[end]\r\n");
  EXPECT_EQ(waitForStatus(program), 0);
  EXPECT_EQ(started(), "");
}

// Fails when it has to be asked for, or comes of a run that did not fail.
TEST_F(ShownPicturesTest, AreOfWhatAFailedStepHasLeft) {
  installChafa("read -r bytes <\"$4\"; echo \"$bytes\"");
  const auto block = [](const std::string& status) {
    return R"({"type":"text","text":"status: )" + status + R"( (terminal)\n\n{}"})";
  };
  for (const std::string status : {"failed", "passed"}) {
    const FakeServerScript script(greeted(
        {"expect tools/call", "result {\"content\":[" + block(status) + "]}", "expect tools/call",
         "result {\"content\":[" + block(status) + "," + std::string(picture) +
             R"(,{"type":"image","data":"YmFy","mimeType":"image/jpeg"}]})"}));
    Pseudoterminal screen(80);
    const int program = screen.start({"--server", FakeServerScript::program(), "follow",
                                      "0a1b2c3d-0000-4000-8000-00000000abcd"});
    const std::string shown = screen.readAll();
    EXPECT_EQ(waitForStatus(program), status == "failed" ? 1 : 0);
    EXPECT_TRUE(shown.ends_with(
        status == "failed"
            ? "failed\r\n{}\r\nWhat the failed step has left on the screen:\r\nbar\r\n"
            : "passed\r\n{}\r\n"))
        << shown;
  }
}

TEST_F(ShownPicturesTest, AreNotForAPipe) {
  installChafa("echo the picture");
  const FakeServerScript script(answer);
  const auto run = runWithFakeServer({"call", "x", "--pictures", shots()});
  EXPECT_EQ(run.output, shot() + "\n[end]");
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(started(), "");
}

TEST_F(ShownPicturesTest, AreNotMissedInAPipe) {
  const FakeServerScript script(answer);
  const auto run = runWithFakeServer({"call", "x"});
  EXPECT_EQ(run.output, "[image/jpeg, 3 bytes]\n[end]");
  EXPECT_EQ(run.errors, "");
}

TEST_F(ShownPicturesTest, AreLeftAtCtrlC) {
  installChafa("echo $$; exec /bin/sleep 60");
  const FakeServerScript script(answer);
  const int program = terminal.start({"--server", FakeServerScript::program(), "call", "x"});
  const int chafa = std::stoi(terminal.readUntil("\r\n"));
  terminal.type("\x03");
  EXPECT_EQ(waitForStatus(program), 128 + SIGINT);
  EXPECT_NE(::kill(chafa, 0), 0);
  EXPECT_TRUE(hasUsualModes(side));
}

/// The viewer by itself.
class PictureViewerTest : public ShownPicturesTest {
 protected:
  Interruption interruption;
  Console console{interruption, terminal.side(), terminal.side()};
};

TEST_F(PictureViewerTest, EndsAChafaThatHangsAndTriesNoOther) {
  installChafa("/bin/stty raw -echo <&1; echo $$; exec /bin/sleep 60");
  PictureViewer viewer(console, interruption, Seconds(0.3));
  ASSERT_TRUE(viewer.hasScreen());
  viewer.showFile("a.jpg");
  const int chafa = std::stoi(terminal.readUntil("\033[K"));
  EXPECT_TRUE(::kill(chafa, 0) != 0 && errno == ESRCH);
  EXPECT_TRUE(hasUsualModes(side));
  viewer.showFile("b.jpg");
  EXPECT_EQ(started(), "--animate=off\n--size=80x21\n--\na.jpg\n");
}

TEST_F(PictureViewerTest, TakesNoFileForAnOption) {
  installChafa("echo the picture");
  PictureViewer(console, interruption).showFile("-f");
  EXPECT_EQ(started(), "--animate=off\n--size=80x21\n--\n-f\n");
}

TEST_F(PictureViewerTest, HasNoScreenButATerminal) {
  EXPECT_TRUE(PictureViewer(console, interruption).hasScreen());
  const FileDescriptor file(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  Console other(interruption, file.get(), file.get());
  EXPECT_FALSE(PictureViewer(other, interruption).hasScreen());
}

}  // namespace
}  // namespace corvane::testing
