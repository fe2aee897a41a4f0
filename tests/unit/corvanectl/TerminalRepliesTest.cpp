#include "corvanectl/pictures/TerminalReplies.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TerminalReplies after(std::string_view bytes) {
  TerminalReplies replies;
  replies.take(bytes);
  return replies;
}

TEST(TerminalReplies, KnowsSixelFromTheAttributes) {
  for (const char* sixel : {"\033[?62;4;22c", "\033[?65;4;6;18;22c", "\033[?1;2;4c"}) {
    EXPECT_TRUE(after(sixel).haveAttributes()) << sixel;
    EXPECT_TRUE(after(sixel).knowsSixel()) << sixel;
  }
  for (const char* without :
       {"\033[?1;2c", "\033[?62;22c", "\033[?6c", "\033[?4;6c", "\033[?62;44;14c", "\033[?c"}) {
    EXPECT_TRUE(after(without).haveAttributes()) << without;
    EXPECT_FALSE(after(without).knowsSixel()) << without;
  }
}

TEST(TerminalReplies, TakesOnlyThePrimaryAttributesForTheEnd) {
  EXPECT_FALSE(after("\033[>41;4;0c").haveAttributes());
  EXPECT_FALSE(after("\033[?62;4").haveAttributes());
  EXPECT_FALSE(after("?62;4c").haveAttributes());
}

TEST(TerminalReplies, KnowsKittyGraphicsFromAnOk) {
  EXPECT_TRUE(after("\033_Gi=31;OK\033\\").knowsKittyGraphics());
  EXPECT_FALSE(after("\033_Gi=31;ENOTSUP:no\033\\").knowsKittyGraphics());
  EXPECT_FALSE(after("\033_Gi=7;OK\033\\").knowsKittyGraphics());
  EXPECT_FALSE(after("\033_Gi=31;OK").knowsKittyGraphics());
}

TEST(TerminalReplies, KeepsTheName) {
  EXPECT_EQ(after("\033P>|iTerm2 3.5.4\033\\").name(), "iTerm2 3.5.4");
  EXPECT_EQ(after("\033P1$r0m\033\\").name(), "");
}

TEST(TerminalReplies, KnowsTheCellSize) {
  EXPECT_EQ(after("\033[6;36;17t").cellSize(), (PixelSize{17, 36}));
  for (const char* other : {"\033[4;800;600t", "\033[6;0;0t", "\033[6;36t", "\033[t"}) {
    EXPECT_EQ(after(other).cellSize(), std::nullopt) << other;
  }
}

TEST(TerminalReplies, TakesAnswersInPiecesAmongKeys) {
  const std::string_view answers =
      "x\033[A\033P>|kitty(0.35)\033\\yy\033[6;20;10t\033OP\033_Gi=31;OK\033\\\033\033[?62;4c";
  TerminalReplies replies;
  for (const char byte : answers) {
    EXPECT_FALSE(replies.haveAttributes());
    replies.take({&byte, 1});
  }
  EXPECT_TRUE(replies.haveAttributes());
  EXPECT_EQ(replies.name(), "kitty(0.35)");
  EXPECT_TRUE(replies.knowsKittyGraphics());
  EXPECT_TRUE(replies.knowsSixel());
  EXPECT_EQ(replies.cellSize(), (PixelSize{10, 20}));
}

TEST(TerminalReplies, DoesNotListenForEver) {
  TerminalReplies replies;
  replies.take("\033P" + std::string(10'000, 'x'));
  replies.take("\033[?62c");
  EXPECT_TRUE(replies.haveAttributes());
}

TEST(TerminalReplies, WaitsForAttributesAnew) {
  auto replies = after("\033P>|foot(1.2)\033\\\033[?62;4c");
  replies.expectAttributes();
  EXPECT_FALSE(replies.haveAttributes());
  EXPECT_TRUE(replies.knowsSixel());
  EXPECT_EQ(replies.name(), "foot(1.2)");
}

}  // namespace
}  // namespace corvane
