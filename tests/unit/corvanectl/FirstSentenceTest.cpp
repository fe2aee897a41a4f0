#include "corvanectl/terminal/FirstSentence.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(FirstSentence, EndsAtTheFirstStop) {
  EXPECT_EQ(firstSentence("Run tests now. Then wait."), "Run tests now.");
  EXPECT_EQ(firstSentence("Ready?\nThen go."), "Ready?");
  EXPECT_EQ(firstSentence("Only one."), "Only one.");
}

TEST(FirstSentence, IsNotFooledByStopsInside) {
  EXPECT_EQ(firstSentence("Wait (e.g. for 1.5 s) in x.json. Next."),
            "Wait (e.g. for 1.5 s) in x.json.");
}

TEST(FirstSentence, EndsAtAnEmptyLine) {
  EXPECT_EQ(firstSentence("A heading\n\nAnd more."), "A heading");
  EXPECT_EQ(firstSentence(""), "");
}

}  // namespace
}  // namespace corvane
