#include "CorvaneCore/text/Uuid.h"

#include <gtest/gtest.h>

#include <set>

namespace corvane::testing {
namespace {

TEST(UuidTest, FreshIdsAreCanonicalRandomUuids) {
  std::set<std::string> seen;
  std::set<char> variants;
  std::array<std::set<char>, 36> digitsAt;
  for (int round = 0; round < 2'000; ++round) {
    const std::string id = makeRequestId();
    ASSERT_EQ(id.size(), 36U);
    EXPECT_EQ(id.find_first_not_of("0123456789abcdef-"), std::string::npos) << id;
    EXPECT_EQ(parseRequestId(id), id);
    EXPECT_EQ(id[14], '4') << id;
    variants.insert(id[19]);
    for (std::size_t i = 0; i < id.size(); ++i) digitsAt[i].insert(id[i]);
    EXPECT_TRUE(seen.insert(id).second) << "seen before: " << id;
  }
  EXPECT_EQ(variants, (std::set<char>{'8', '9', 'a', 'b'}));
  for (std::size_t i = 0; i < digitsAt.size(); ++i) {
    const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
    const std::size_t expected = dash || i == 14 ? 1 : i == 19 ? 4 : 16;
    EXPECT_EQ(digitsAt[i].size(), expected) << "at position " << i;
  }
}

TEST(UuidTest, AnyCaseIsReadAsLowerCase) {
  EXPECT_EQ(parseRequestId("0b5f7a0e-9C1D-4e2f-8A3b-ABCDEF012345"),
            "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345");
  EXPECT_EQ(parseRequestId("FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"),
            "ffffffff-ffff-ffff-ffff-ffffffffffff");
  EXPECT_EQ(parseRequestId("00000000-0000-0000-0000-000000000000"),
            "00000000-0000-0000-0000-000000000000");
}

TEST(UuidTest, RefusesEverythingElse) {
  for (const char* text :
       {"", "-", "0b5f7a0e", "0b5f7a0e9c1d4e2f8a3babcdef012345",
        "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234", "0b5f7a0e-9c1d-4e2f-8a3b-abcdef0123456",
        "{0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345}", "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234g",
        "0b5f7a0e-9c1d-4e2f-8a3babcdef-012345", "0b5f7a0e_9c1d_4e2f_8a3b_abcdef012345",
        " b5f7a0e-9c1d-4e2f-8a3b-abcdef012345", "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234\n",
        "0b5f7a0e-9c1d-4e2f-8a3b-abcdef0123\xC3\xA9", "../../../../../../../../../etc/passwd",
        "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234/", "-b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",
        "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234`", "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234@"}) {
    EXPECT_EQ(parseRequestId(text), std::nullopt) << text;
  }
  std::string withNul = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345";
  withNul.back() = '\0';
  EXPECT_EQ(parseRequestId(withNul), std::nullopt);
}

}  // namespace
}  // namespace corvane::testing
