#include <gtest/gtest.h>

#include <limits>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/Codec.h"
#include "CorvaneCore/json/Record.h"
#include "tests/support/ErrorText.h"

namespace corvane::testing {
namespace {

struct Leaf {
  std::int64_t size = 0;
  std::optional<std::string> note;

  static constexpr auto fields() {
    return FieldList(field("size", &Leaf::size), field("note", &Leaf::note));
  }
};

/// A record that has every kind of field, declared in no particular order.
struct Tree {
  std::string name;
  std::vector<Leaf> leaves;
  std::optional<Leaf> best;
  bool green = true;
  double height = 1.5;
  std::optional<std::string> owner;
  AnyCodable extra;
  std::map<std::string, Leaf> byColor;

  static constexpr auto fields() {
    return FieldList(field("name", &Tree::name), field("leaves", &Tree::leaves),
                     field("best", &Tree::best), field("green", &Tree::green).withDefault(),
                     field("height", &Tree::height), field("owner", &Tree::owner).orElse("keeper"),
                     field("extra", &Tree::extra), field("byColor", &Tree::byColor));
  }
};

/// A record that contains itself.
struct Branch {
  std::optional<std::vector<Branch>> branches;

  static constexpr auto fields() { return FieldList(field("branches", &Branch::branches)); }
};

struct Nothing {
  static constexpr auto fields() { return FieldList(); }
};

/// Records whose list of fields lags behind.
struct LacksTheLast {
  std::string name;
  std::optional<std::int64_t> size;
  static constexpr auto fields() { return FieldList(field("name", &LacksTheLast::name)); }
};
struct LacksTheFirst {
  bool green = false;
  std::string name;
  static constexpr auto fields() { return FieldList(field("name", &LacksTheFirst::name)); }
};
struct LacksARecord {
  std::string name;
  Leaf best;
  static constexpr auto fields() { return FieldList(field("name", &LacksARecord::name)); }
};
struct LacksAll {
  AnyCodable extra;
  static constexpr auto fields() { return FieldList(); }
};
struct InAnotherOrder {
  std::string name;
  std::int64_t size = 0;
  static constexpr auto fields() {
    return FieldList(field("size", &InAnotherOrder::size), field("name", &InAnotherOrder::name));
  }
};

// Fail when a member that is not listed goes unnoticed.
template <class Record>
constexpr bool isWhole = record_detail::namesEveryMember<Record>(Record::fields());
static_assert(isWhole<Tree> && isWhole<Leaf> && isWhole<Branch> && isWhole<Nothing>);
static_assert(!isWhole<LacksTheLast>);
static_assert(!isWhole<LacksTheFirst>);
static_assert(!isWhole<LacksARecord>);
static_assert(!isWhole<LacksAll>);
static_assert(!isWhole<InAnotherOrder>);

constexpr const char* fullTree =
    R"({"best":{"note":"n","size":3},"byColor":{"a b":{"size":1},"red":{"size":2}},)"
    R"("extra":[null,{"x":1.5}],"green":false,"height":2.5,"leaves":[{"size":1},{"size":2}],)"
    R"("name":"oak","owner":"me"})";

constexpr const char* leastTree = R"({"byColor":{},"extra":null,"height":0,"leaves":[],"name":""})";

std::string decodeError(std::string_view text) {
  return errorText<DecodeError>([&] { (void)AgentWire::decode<Tree>(text); });
}

TEST(RecordTest, WritesWhatItReadWithKeysSorted) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Tree>(fullTree)), fullTree);
}

TEST(RecordTest, LeavesEmptyOptionalsOut) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Tree>(leastTree)),
            R"({"byColor":{},"extra":null,"green":true,"height":0,"leaves":[],"name":""})");
  EXPECT_EQ(AgentWire::encode(Tree()),
            R"({"byColor":{},"extra":null,"green":true,"height":1.5,"leaves":[],"name":""})");
}

TEST(RecordTest, NullCountsAsAbsentForOptionalAndDefaultedFields) {
  const auto tree = AgentWire::decode<Tree>(
      R"({"best":null,"byColor":{},"extra":1,"green":null,"height":1,"leaves":[],"name":"","owner":null})");
  EXPECT_FALSE(tree.best);
  EXPECT_FALSE(tree.owner);
  EXPECT_TRUE(tree.green);
}

TEST(RecordTest, DropsUnknownMembersAtEveryLevel) {
  const auto tree = AgentWire::decode<Tree>(
      R"({"":7,"x":[1],"byColor":{},"extra":{"kept":1},"height":1,"leaves":[{"size":1,"x":{}}],"name":"","Name":2})");
  EXPECT_EQ(
      AgentWire::encode(tree),
      R"({"byColor":{},"extra":{"kept":1},"green":true,"height":1,"leaves":[{"size":1}],"name":""})");
}

TEST(RecordTest, ReadsAnAliasWhenTheKeyIsAbsentAndNeverWritesIt) {
  const auto owner = [](std::string_view members) {
    return AgentWire::decode<Tree>(R"({"byColor":{},"extra":1,"height":1,"leaves":[],"name":"")" +
                                   std::string(members) + "}")
        .owner;
  };
  EXPECT_EQ(owner(R"(,"keeper":"k")"), "k");
  EXPECT_EQ(owner(R"(,"owner":null,"keeper":"k")"), "k");
  EXPECT_EQ(owner(R"(,"owner":"o","keeper":"k")"), "o");
  EXPECT_EQ(owner(R"(,"owner":"o","keeper":7)"), "o");
  EXPECT_EQ(owner(R"(,"owner":"","keeper":"k")"), "");
  EXPECT_EQ(owner(R"(,"keeper":null)"), std::nullopt);
  EXPECT_EQ(owner(""), std::nullopt);
  Tree tree;
  tree.owner = "me";
  EXPECT_EQ(
      AgentWire::encode(tree),
      R"({"byColor":{},"extra":null,"green":true,"height":1.5,"leaves":[],"name":"","owner":"me"})");
}

TEST(RecordTest, ErrorsNameThePlace) {
  EXPECT_EQ(decodeError("[]"), "expected an object");
  EXPECT_EQ(decodeError("{}"), "name: required");
  EXPECT_EQ(decodeError(R"({"name":null})"), "name: expected a string");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":{}})"), "leaves: expected an array");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":[{"size":1},null]})"),
            "leaves[1]: expected an object");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":[{"size":1},{"size":0.5}]})"),
            "leaves[1].size: expected an integer");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":[{"size":1},{}]})"), "leaves[1].size: required");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":[],"best":{"size":1,"note":[]}})"),
            "best.note: expected a string");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":[],"green":1})"), "green: expected a boolean");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":[],"height":true})"), "height: expected a number");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":[],"height":1,"owner":7})"),
            "owner: expected a string");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":[],"height":1,"keeper":7})"),
            "keeper: expected a string");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":[],"height":1})"), "extra: required");
  EXPECT_EQ(decodeError(R"({"name":"","leaves":[],"height":1,"extra":1,"byColor":{"a b":{}}})"),
            "byColor.a b.size: required");
}

TEST(RecordTest, ErrorsStayOnOneLine) {
  EXPECT_EQ(decodeError(
                R"({"name":"","leaves":[],"height":1,"extra":1,"byColor":{"a\nb\u2028\u0000":7}})"),
            R"(byColor.a\nb\u2028\u0000: expected an object)");
}

TEST(RecordTest, TheFirstFieldInDeclarationOrderFailsFirst) {
  EXPECT_EQ(decodeError(R"({"byColor":1,"extra":1,"height":"","leaves":1,"name":1})"),
            "name: expected a string");
  EXPECT_EQ(decodeError(R"({"byColor":1,"extra":1,"height":"","leaves":1,"name":""})"),
            "leaves: expected an array");
}

TEST(RecordTest, PathsBeginAtTheGivenRoot) {
  const auto error = [](AnyCodable value) {
    return errorText<DecodeError>([&] { (void)decodeValue<Tree>(value, "params"); });
  };
  EXPECT_EQ(error(7), "params: expected an object");
  EXPECT_EQ(error(AnyCodable::Object{}), "params.name: required");
  EXPECT_EQ(error(AnyCodable::Object{{"name", ""}, {"leaves", AnyCodable::Array{7}}}),
            "params.leaves[0]: expected an object");
}

TEST(RecordTest, EncodesToAValueAsToAText) {
  const auto tree = AgentWire::decode<Tree>(fullTree);
  EXPECT_EQ(toJson(encodeValue(tree)), fullTree);
  EXPECT_EQ(AgentWire::encode(decodeValue<Tree>(encodeValue(tree))), fullTree);
}

TEST(RecordTest, ARecordWithoutFieldsIsAnEmptyObject) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Nothing>(R"({"a":1})")), "{}");
}

std::string nestedBranches(std::size_t levels) {
  std::string text;
  for (std::size_t i = 0; i < levels; ++i) text += R"({"branches":[)";
  text += "{}";
  for (std::size_t i = 0; i < levels; ++i) text += "]}";
  return text;
}

TEST(RecordTest, RecordsInThemselvesAreReadHundredsOfLevelsDeep) {
  const std::string text = nestedBranches(499);
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Branch>(text)), text);
}

TEST(RecordTest, DeeperRecordsAreRefusedWithoutUsingUpTheStack) {
  for (const std::size_t levels : {std::size_t{500}, std::size_t{20'000}}) {
    const std::string error =
        errorText<DecodeError>([&] { (void)AgentWire::decode<Branch>(nestedBranches(levels)); });
    EXPECT_TRUE(error.starts_with("branches[0].branches[0].branches[0]")) << error;
    EXPECT_TRUE(error.ends_with(": nested too deeply")) << error;
  }
}

template <class T>
std::string decodeError(std::string_view text) {
  return errorText<DecodeError>([&] { (void)AgentWire::decode<T>(text); });
}

TEST(CodecTest, IntegersAreWholeNumbersOfAnySpelling) {
  EXPECT_EQ(AgentWire::decode<std::int64_t>("7.0"), 7);
  EXPECT_EQ(AgentWire::decode<std::int64_t>("9007199254740993.0"), 9007199254740993);
  EXPECT_EQ(AgentWire::decode<std::int64_t>("-9223372036854775808"),
            std::numeric_limits<std::int64_t>::min());
  for (const char* text : {"7.5", "9223372036854775808", "1e19", R"("7")", "true", "null"}) {
    EXPECT_EQ(decodeError<std::int64_t>(text), "expected an integer") << text;
  }
}

TEST(CodecTest, NumbersTakeWholeAndFractional) {
  EXPECT_EQ(AgentWire::decode<double>("7"), 7.0);
  EXPECT_EQ(AgentWire::decode<double>("-0.5"), -0.5);
  EXPECT_EQ(AgentWire::decode<double>("1e19"), 1e19);
  for (const char* text : {R"("7")", "false", "null", "[]"}) {
    EXPECT_EQ(decodeError<double>(text), "expected a number") << text;
  }
}

TEST(CodecTest, BooleansAreNoNumbers) {
  EXPECT_EQ(AgentWire::decode<bool>("true"), true);
  EXPECT_EQ(decodeError<bool>("1"), "expected a boolean");
  EXPECT_EQ(decodeError<bool>(R"("true")"), "expected a boolean");
}

TEST(CodecTest, DatesAreWholeSeconds) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Date>(R"("2025-03-01T10:30:00+01:00")")),
            R"("2025-03-01T09:30:00Z")");
  EXPECT_EQ(decodeError<Date>(R"("2025-03-01T09:30:00.123Z")"),
            "expected an ISO 8601 date-time in whole seconds");
  EXPECT_EQ(decodeError<Date>(R"("yesterday")"), "expected an ISO 8601 date-time in whole seconds");
  EXPECT_EQ(decodeError<Date>("1740821400"), "expected a date");
}

TEST(CodecTest, ListsAndMapsNameTheElementThatDoesNotFit) {
  using Lists = std::map<std::string, std::vector<bool>>;
  const char* text = R"({"":[],"a":[true,false],"b":[true]})";
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Lists>(text)), text);
  EXPECT_EQ(decodeError<Lists>(R"({"a":[true,0]})"), "a[1]: expected a boolean");
  EXPECT_EQ(decodeError<Lists>(R"({"a":true})"), "a: expected an array");
  EXPECT_EQ(decodeError<Lists>("[]"), "expected an object");
  EXPECT_EQ(decodeError<std::vector<std::vector<std::string>>>(R"([["a"],["b",7]])"),
            "[1][1]: expected a string");
}

TEST(CodecTest, FreeValuesPassThrough) {
  const char* text = R"([null,{"a":[1,0.5,"x",true]}])";
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<AnyCodable>(text)), text);
  const char* members = R"({"a":[null,{"b":0.5}],"c":true})";
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<JsonObject>(members)), members);
  EXPECT_EQ(decodeError<JsonObject>(text), "expected an object");
}

TEST(CodecTest, WhatIsNoJsonIsADecodeError) {
  EXPECT_THROW((void)AgentWire::decode<std::string>("text"), DecodeError);
  EXPECT_THROW((void)AgentWire::encode(std::numeric_limits<double>::infinity()), EncodeError);
}

}  // namespace
}  // namespace corvane::testing
