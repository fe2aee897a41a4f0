#include <gtest/gtest.h>
#include <signal.h>

#include "CorvaneCore/text/Base64.h"
#include "FakeServerScript.h"
#include "ProgramRun.h"
#include "Pseudoterminal.h"
#include "corvane_mcp/trace/PictureFormats.h"
#include "corvanectl/pictures/InlineImage.h"

namespace corvane {
namespace {

const std::string questions = "\033[>q\033[16t\033[c";
const std::string graphicsQuestion = "\033_Gi=31,s=1,v=1,a=q,t=d,f=24;AAAA\033\\\r\033[K\033[c";

/// A call that is answered with a picture, at a terminal whose answers the test gives.
class TerminalPictures : public testing::Test {
 protected:
  void start(const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments{"--server", FakeServerScript::program(), "call", "x"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    program = terminal.start(arguments);
  }
  /// Waits for the program to have asked, then answers.
  void answer(const std::string& question, std::string_view answers) {
    const std::string& shown = terminal.readUntil(question);
    EXPECT_TRUE(shown.ends_with(question)) << shown;
    terminal.type(answers);
  }
  /// What was shown after the last question, once the line about the picture is there.
  std::string shownAfter(const std::string& question) {
    const std::string& shown = terminal.readUntil(line);
    const auto at = shown.rfind(question);
    EXPECT_NE(at, std::string::npos) << shown;
    return at == std::string::npos ? shown : shown.substr(at + question.size());
  }
  void expectEverythingAsBefore() {
    EXPECT_EQ(waitForStatus(program), 0);
    EXPECT_TRUE(hasUsualModes(side));
    EXPECT_EQ(unreadInput(side), 0);
  }

  static Picture picture() {
    Picture picture({40, 80});
    for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
      picture.bytes[i] = i % 4 == 1 ? 200 : 30;
    }
    return picture;
  }

  const std::string jpeg = encodeJpeg(picture(), 0.9, {});
  const std::string line = "[image/jpeg, " + std::to_string(jpeg.size()) + " bytes]\r\n";
  const FakeServerScript script{
      greeted({"expect tools/call",
               R"(result {"content":[{"type":"image","mimeType":"image/jpeg","data":")" +
                   base64(jpeg) + R"("}],"isError":false})"})};
  Pseudoterminal terminal{80};
  FileDescriptor side = terminal.anotherSide();
  int program = 0;
};

TEST_F(TerminalPictures, AreShownInTheWayOfKitty) {
  start();
  answer(questions, "\033P>|kitty(0.35.2)\033\\\033[6;20;10t\033[?62;c");
  answer(graphicsQuestion, "\033_Gi=31;OK\033\\\033[?62;c");
  const std::string shown = shownAfter(graphicsQuestion);
  EXPECT_TRUE(shown.starts_with("\033_Ga=T,f=24,o=z,s=40,v=80,q=2,m=0;")) << shown;
  EXPECT_TRUE(shown.ends_with("\033\\\r\n" + line)) << shown;
  expectEverythingAsBefore();
}

TEST_F(TerminalPictures, AreShownInTheWayOfITerm) {
  start();
  answer(questions, "\033P>|iTerm2 3.5.4\033\\\033[?62;4c");
  EXPECT_EQ(shownAfter(questions), itermImage(jpeg, 4) + "\r\n" + line);
  expectEverythingAsBefore();
}

TEST_F(TerminalPictures, AreShownAsSixels) {
  start();
  answer(questions, "\033[6;20;10t\033[?62;4;22c");
  answer(graphicsQuestion, "\033[?62;4;22c");
  const std::string shown = shownAfter(graphicsQuestion);
  EXPECT_TRUE(shown.starts_with("\033P0;1q\"1;1;40;80#0;2;")) << shown;
  EXPECT_TRUE(shown.ends_with("\033\\\r\n" + line)) << shown;
  expectEverythingAsBefore();
}

TEST_F(TerminalPictures, AreNotShownWhereNothingIsKnownOfThem) {
  start();
  answer(questions, "\033[?1;2c");
  answer(graphicsQuestion, "\033[?1;2c");
  EXPECT_EQ(shownAfter(graphicsQuestion), line);
  expectEverythingAsBefore();
}

TEST_F(TerminalPictures, AreNotShownWhereNothingIsAnswered) {
  start();
  EXPECT_EQ(terminal.readUntil(line), questions + line);
  expectEverythingAsBefore();
}

TEST_F(TerminalPictures, AreNotShownByATerminalThatOnlyPrints) {
  terminal.setKind("dumb");
  start();
  EXPECT_EQ(terminal.readUntil(line), line);
  expectEverythingAsBefore();
}

TEST_F(TerminalPictures, AskNoGraphicsQuestionOfAMultiplexer) {
  start();
  answer(questions, "\033P>|tmux 3.4\033\\\033[?1;2;4c");
  EXPECT_TRUE(shownAfter(questions).starts_with("\033P0;1q"));
  expectEverythingAsBefore();
}

TEST_F(TerminalPictures, AreSavedAsWell) {
  const TemporaryDirectory directory;
  start({"--pictures", directory.path()});
  answer(questions, "\033P>|iTerm2 3.5.4\033\\\033[?62;4c");
  const std::string path = (directory.path() / "x-1.jpg").string() + "\r\n";
  EXPECT_TRUE(terminal.readUntil(path).ends_with("\a\r\n" + path));
  expectEverythingAsBefore();
}

TEST_F(TerminalPictures, CtrlCWhileAskingLeavesTheTerminalAsItWas) {
  start();
  terminal.readUntil(questions);
  terminal.type("\x03");
  EXPECT_EQ(waitForStatus(program), 128 + SIGINT);
  EXPECT_TRUE(hasUsualModes(side));
}

}  // namespace
}  // namespace corvane
