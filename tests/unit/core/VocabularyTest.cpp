#include <gtest/gtest.h>

#include <array>
#include <type_traits>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/json/Vocabulary.h"
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

enum class ShapeKind { circle, rectangle, nothing };

struct Circle {
  static constexpr ShapeKind kind = ShapeKind::circle;

  double radius = 0;

  static constexpr auto fields() { return FieldList(field("radius", &Circle::radius)); }
};

/// Its keys stand on both sides of the tag's key.
struct Rectangle {
  static constexpr ShapeKind kind = ShapeKind::rectangle;

  std::int64_t width = 0;
  std::int64_t height = 0;
  std::optional<std::string> label;

  static constexpr auto fields() {
    return FieldList(field("width", &Rectangle::width), field("height", &Rectangle::height),
                     field("label", &Rectangle::label));
  }
};

template <auto Of>
struct Nothing {
  static constexpr auto kind = Of;

  static constexpr auto fields() { return FieldList(); }
};

struct Shape {
  using Kind = ShapeKind;

  static constexpr std::string_view tagKey = "kind";
  std::variant<Circle, Rectangle, Nothing<Kind::nothing>> choice;
};

struct Drawing {
  std::vector<Shape> shapes;

  static constexpr auto fields() { return FieldList(field("shapes", &Drawing::shapes)); }
};

struct Order {
  enum class Kind { go, stop };

  static constexpr std::string_view tagKey = "order";
  static constexpr std::string_view unknownTag = "Unknown order ";
  std::variant<Nothing<Kind::go>, Nothing<Kind::stop>> choice;
};

}  // namespace
}  // namespace corvane::testing

namespace corvane {

template <>
struct Vocabulary<testing::Shape::Kind> {
  using Row = VocabularyRow<testing::Shape::Kind>;
  static constexpr std::array rows{Row{testing::Shape::Kind::circle, "circle"},
                                   Row{testing::Shape::Kind::rectangle, "rectangle"},
                                   Row{testing::Shape::Kind::nothing, "nothing"}};
};

template <>
struct Vocabulary<testing::Order::Kind> {
  using Row = VocabularyRow<testing::Order::Kind>;
  static constexpr std::array rows{Row{testing::Order::Kind::go, "go"},
                                   Row{testing::Order::Kind::stop, "stop"}};
};

}  // namespace corvane

namespace corvane::testing {
namespace {

// Fail when the order of the alternatives, or how many there are, is not compared with the kinds.
template <class... Alternatives>
constexpr bool shapesAre =
    record_detail::followsKinds<Shape>(static_cast<const std::variant<Alternatives...>*>(nullptr));
static_assert(shapesAre<Circle, Rectangle, Nothing<ShapeKind::nothing>>);
static_assert(!shapesAre<Rectangle, Circle, Nothing<ShapeKind::nothing>>);
static_assert(!shapesAre<Circle, Rectangle>);

template <class T>
std::string decodeError(std::string_view text) {
  return errorText<DecodeError>([&] { (void)AgentWire::decode<T>(text); });
}

TEST(TaggedUnionTest, TheTagNamesTheCase) {
  const char* text =
      R"({"shapes":[{"height":2,"kind":"rectangle","label":"r","width":1},)"
      R"({"height":4,"kind":"rectangle","width":3},{"kind":"circle","radius":0.5},{"kind":"nothing"}]})";
  const auto drawing = AgentWire::decode<Drawing>(text);
  EXPECT_EQ(std::get<Rectangle>(drawing.shapes[0].choice).width, 1);
  EXPECT_EQ(std::get<Circle>(drawing.shapes[2].choice).radius, 0.5);
  EXPECT_TRUE(std::holds_alternative<Nothing<ShapeKind::nothing>>(drawing.shapes[3].choice));
  EXPECT_EQ(AgentWire::encode(drawing), text);
}

TEST(TaggedUnionTest, MembersOfOtherCasesAreIgnored) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Shape>(
                R"({"kind":"circle","radius":1,"width":"wide","x":null})")),
            R"({"kind":"circle","radius":1})");
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Shape>(R"({"kind":"nothing","radius":false})")),
            R"({"kind":"nothing"})");
}

TEST(TaggedUnionTest, ErrorsNameThePlace) {
  EXPECT_EQ(decodeError<Shape>("[]"), "expected an object");
  EXPECT_EQ(decodeError<Shape>("{}"), "kind: required");
  EXPECT_EQ(decodeError<Shape>(R"({"kind":null})"), "kind: expected a string");
  EXPECT_EQ(decodeError<Shape>(R"({"kind":0})"), "kind: expected a string");
  EXPECT_EQ(decodeError<Shape>(R"({"kind":"Circle"})"),
            "kind: expected one of circle, rectangle, nothing");
  EXPECT_EQ(decodeError<Shape>(R"({"kind":"circle"})"), "radius: required");
  EXPECT_EQ(decodeError<Drawing>(R"({"shapes":[{"kind":"nothing"},{"kind":""}]})"),
            "shapes[1].kind: expected one of circle, rectangle, nothing");
  EXPECT_EQ(decodeError<Drawing>(R"({"shapes":[{"kind":"rectangle","width":1,"height":"2"}]})"),
            "shapes[0].height: expected an integer");
}

TEST(TaggedUnionTest, TheTagIsReadBeforeTheFields) {
  EXPECT_EQ(decodeError<Shape>(R"({"kind":"square","radius":"wide"})"),
            "kind: expected one of circle, rectangle, nothing");
}

TEST(TaggedUnionTest, AUnionMayWordTheErrorForAnUnknownTag) {
  EXPECT_EQ(decodeError<Order>(R"({"order":"wait"})"), "order: Unknown order wait");
  EXPECT_EQ(decodeError<Order>(R"({"order":7})"), "order: expected a string");
}

TEST(TaggedUnionTest, CasesOfOneTypeAreToldApart) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Order>(R"({"order":"stop"})")),
            R"({"order":"stop"})");
}

}  // namespace
}  // namespace corvane::testing
