#include "CorvaneCore/json/Vocabulary.h"

#include <gtest/gtest.h>

#include <array>
#include <type_traits>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "tests/support/ErrorText.h"

namespace corvane::testing {
namespace {

enum class Season { autumn, spring, summer };
enum class OneTooMany { only, forgotten };
enum class OneTooFew { first };
enum class Swapped { first, second };
enum class Nameless { first };

}  // namespace
}  // namespace corvane::testing

namespace corvane {

template <>
struct Vocabulary<testing::Season> {
  struct Row {
    testing::Season value;
    std::string_view rawValue;
    bool warm;
  };
  static constexpr std::array rows{Row{testing::Season::autumn, "autumn", false},
                                   Row{testing::Season::spring, "spring", false},
                                   Row{testing::Season::summer, "highSummer", true}};
};
template <>
struct Vocabulary<testing::OneTooMany> {
  static constexpr std::array rows{
      VocabularyRow<testing::OneTooMany>{testing::OneTooMany::only, "only"}};
};
template <>
struct Vocabulary<testing::OneTooFew> {
  static constexpr std::array rows{
      VocabularyRow<testing::OneTooFew>{testing::OneTooFew::first, "first"},
      VocabularyRow<testing::OneTooFew>{static_cast<testing::OneTooFew>(1), "second"},
  };
};
template <>
struct Vocabulary<testing::Swapped> {
  static constexpr std::array rows{
      VocabularyRow<testing::Swapped>{testing::Swapped::second, "second"},
      VocabularyRow<testing::Swapped>{testing::Swapped::first, "first"}};
};
template <>
struct Vocabulary<testing::Nameless> {
  static constexpr std::array rows{VocabularyRow<testing::Nameless>{testing::Nameless::first, ""}};
};

}  // namespace corvane

namespace corvane::testing {
namespace {

// Fail when a table is no longer compared with its enumeration.
using vocabulary_detail::isComplete;
static_assert(isComplete<Season>);
static_assert(!isComplete<OneTooMany>);
static_assert(!isComplete<OneTooFew>);
static_assert(!isComplete<Swapped>);
static_assert(!isComplete<Nameless>);

// Fails when a column that is left out gets a value of its own.
struct RowWithAColumn {
  Required<bool> warm;
};
static_assert(!std::is_default_constructible_v<RowWithAColumn>);

TEST(VocabularyTest, RawValuesAndValuesBelongTogether) {
  EXPECT_EQ(rawValue(Season::summer), "highSummer");
  EXPECT_EQ(fromRawValue<Season>("highSummer"), Season::summer);
  EXPECT_TRUE(vocabularyRow(Season::summer).warm);
  EXPECT_FALSE(vocabularyRow(Season::autumn).warm);
}

TEST(VocabularyTest, RawValuesAreExact) {
  for (const char* raw : {"", "summer", "highsummer", "HighSummer", " spring", "spring "}) {
    EXPECT_EQ(fromRawValue<Season>(raw), std::nullopt) << raw;
  }
}

TEST(VocabularyTest, ListsRawValuesInTheOrderOfTheTable) {
  EXPECT_EQ(joinedRawValues<Season>(", "), "autumn, spring, highSummer");
  EXPECT_EQ(joinedRawValues<Season>(", ", [](Season season) { return season != Season::spring; }),
            "autumn, highSummer");
  EXPECT_EQ(joinedRawValues<Season>(", ", [](Season) { return false; }), "");
}

TEST(VocabularyTest, IsReadAndWrittenAsItsRawValue) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<std::vector<Season>>(R"(["highSummer","autumn"])")),
            R"(["highSummer","autumn"])");
  const auto error = [](std::string_view text) {
    return errorText<DecodeError>([&] { (void)AgentWire::decode<Season>(text); });
  };
  EXPECT_EQ(error(R"("winter")"), "expected one of autumn, spring, highSummer");
  EXPECT_EQ(error("0"), "expected a string");
}

}  // namespace
}  // namespace corvane::testing
