#include <gtest/gtest.h>

#include <array>
#include <random>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/text/Unicode.h"
#include "tests/support/PrintJson.h"

namespace corvane::testing {
namespace {

constexpr std::array<std::string_view, 8> seeds{
    R"({"jsonrpc":"2.0","id":7,"method":"tools/call","params":{"name":"get_result","arguments":{}}})",
    R"([1, 1.5, true, "x", null, {"a":{}}])",
    R"({"a":[[],[[]],{}],"b":{"c":{"d":[null,false]}},"":"","\u0000":"\n"})",
    R"(["\ud83d\ude00","\u00e9\\ud800","a\/b\"","\b\f\n\r\t"])",
    "[\"\xF0\x9F\x98\x80\",\"\xC3\xA9\",\"\xEE\x80\x80\"]",
    R"([0,-0,1e3,-1.25E-7,9223372036854775807,-9223372036854775808,1e308,5e-324,9007199254740993.5])",
    R"({"b":1,"a":2,"b":3,"updatedAt":"2026-01-31T12:00:00Z"})",
    " { \"a\" : [ 1 , 2 ] ,\t\"b\" :\r\n\"c\" } ",
};

constexpr std::string_view fragments[] = {"[",
                                          "]",
                                          "{",
                                          "}",
                                          ",",
                                          ":",
                                          "\"",
                                          "\\",
                                          "\\u",
                                          "\\u0",
                                          "\\ud83d",
                                          "\\ude00",
                                          "0",
                                          "-",
                                          "1",
                                          ".",
                                          "e",
                                          "E",
                                          "+",
                                          "e400",
                                          "null",
                                          "true",
                                          "false",
                                          " ",
                                          "\n",
                                          "\t",
                                          "\x01",
                                          "\x7F",
                                          "\x80",
                                          "\xC3",
                                          "\xF0\x9F",
                                          "\xED\xA0\x80",
                                          "\xEF\xBB\xBF",
                                          "/",
                                          "a",
                                          "\"a\":"};

class Mutator {
 public:
  explicit Mutator(std::uint64_t seed) : random(seed) {}

  std::string next() {
    std::string text(seeds[below(seeds.size())]);
    for (std::size_t changes = 1 + below(4); changes > 0; --changes) change(text);
    return text;
  }

 private:
  std::size_t below(std::size_t bound) { return bound == 0 ? 0 : random() % bound; }

  void change(std::string& text) {
    const std::size_t at = below(text.size() + 1);
    const std::size_t length = below(std::min<std::size_t>(text.size() - at, 8) + 1);
    switch (below(6)) {
      case 0:
        text.erase(at, length);
        break;
      case 1:
        text.insert(at, fragments[below(std::size(fragments))]);
        break;
      case 2:
        text.replace(at, length, fragments[below(std::size(fragments))]);
        break;
      case 3:
        text.insert(below(text.size() + 1), text.substr(at, length));
        break;
      case 4:
        if (at < text.size()) text[at] = static_cast<char>(text[at] ^ (1 << below(8)));
        break;
      default: {
        const std::string_view other = seeds[below(seeds.size())];
        const std::size_t from = below(other.size());
        text.replace(at, length, other.substr(from, below(20)));
      }
    }
  }

  std::mt19937_64 random;
};

TEST(JsonMutationTest, DamagedTextsAreRefusedInOneLineOrReachAFixedPoint) {
  Mutator mutator(20260131);
  JsonReader reader;
  int accepted = 0;
  int refused = 0;
  for (int round = 0; round < 20'000; ++round) {
    const std::string text = mutator.next();
    AnyCodable value;
    try {
      value = reader.read(text);
    } catch (const DecodeError& error) {
      const std::string_view description = error.what();
      EXPECT_TRUE(description.starts_with("not ")) << text;
      EXPECT_EQ(escapeControls(description), description) << text;
      EXPECT_TRUE(isValidUtf8(description)) << text;
      ++refused;
      continue;
    }
    ++accepted;
    ASSERT_TRUE(isValidUtf8(text));
    const std::string written = toJson(value);
    EXPECT_TRUE(isValidUtf8(written));
    // A double that is whole is an integer from then on.
    const AnyCodable again = readJson(written);
    EXPECT_EQ(toJson(again), written) << text;
    EXPECT_EQ(readJson(toJson(again)), again) << text;
  }
  // Both outcomes are common, so the test looks at both.
  EXPECT_GT(accepted, 1'000);
  EXPECT_GT(refused, 1'000);
}

}  // namespace
}  // namespace corvane::testing
