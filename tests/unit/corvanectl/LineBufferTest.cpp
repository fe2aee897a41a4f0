#include "corvanectl/protocol/LineBuffer.h"

#include <gtest/gtest.h>

#include "corvanectl/protocol/ServerLog.h"

namespace corvane {
namespace {

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

}  // namespace
}  // namespace corvane
