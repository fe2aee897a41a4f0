#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CorvaneCore/json/JsonReader.h"

namespace corvane {
namespace {

/// Notes the position at every event.
class Positions final : public JsonSink {
 public:
  explicit Positions(const JsonReader& reader) : reader(reader) {}

  void null() override { note('n'); }
  void boolean(bool) override { note('b'); }
  void integer(std::int64_t) override { note('i'); }
  void number(double) override { note('d'); }
  void string(std::string_view) override { note('s'); }
  void beginArray() override { note('['); }
  void endArray() override { note(']'); }
  void beginObject() override { note('{'); }
  void key(std::string_view) override {}
  void endObject() override { note('}'); }

  std::string noted;

 private:
  void note(char event) {
    noted += (noted.empty() ? "" : " ") + (event + std::to_string(reader.position()));
  }

  const JsonReader& reader;
};

std::string positionsIn(std::string_view text) {
  JsonReader reader;
  Positions positions(reader);
  reader.read(text, positions);
  return positions.noted;
}

TEST(JsonReaderPositionTest, ValuesAreWhereTheyBegin) {
  EXPECT_EQ(positionsIn("7"), "i0");
  EXPECT_EQ(positionsIn("  null "), "n2");
  EXPECT_EQ(positionsIn(R"([1,"a", 0.5,true])"), "[0 i1 s3 d8 b12 ]17");
  EXPECT_EQ(positionsIn(R"({"k" : "v"})"), "{0 s7 }11");
}

TEST(JsonReaderPositionTest, EndsAreWhereTheTextGoesOn) {
  EXPECT_EQ(positionsIn("[]"), "[0 ]2");
  EXPECT_EQ(positionsIn("[[] , {}]"), "[0 [1 ]4 {6 }8 ]9");
  EXPECT_EQ(positionsIn("{\"a\":{\"b\":[1]\n}\t}\n"), "{0 {5 [10 i11 ]14 }16 }18");
}

}  // namespace
}  // namespace corvane
