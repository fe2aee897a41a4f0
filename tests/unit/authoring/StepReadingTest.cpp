#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CorvaneCore/authoring/TestPayloadArguments.h"
#include "CorvaneCore/json/JsonReader.h"

namespace corvane::testing {
namespace {

using Notes = std::vector<std::string>;

/// The payload that comes of these steps as the text in its file, followed by the notes.
Notes outcome(TestPayloadArguments arguments, Notes notes) {
  if (arguments.interactions) {
    const auto& dropped = arguments.interactions->dropped;
    notes.insert(notes.end(), dropped.begin(), dropped.end());
  }
  const bool hasSteps = arguments.interactions.has_value();
  AgentTestSchema payload;
  std::move(arguments).moveInto(payload);
  notes.insert(notes.begin(),
               hasSteps ? AgentWire::encode(payload.tests.at(0).interactions) : "no steps");
  return notes;
}

Notes readFromText(const std::string& json) {
  Notes notes;
  auto arguments = TestPayloadArguments::read(
      json,
      [&](std::string_view key, std::string_view why) { notes.push_back(droppedNote(key, why)); });
  if (!arguments) return {"no object"};
  return outcome(*std::move(arguments), std::move(notes));
}

Notes readFromValues(const std::string& json) {
  Notes notes;
  AnyCodable value = readJson(json);
  auto* object = std::get_if<JsonObject>(&value.value());
  if (!object) return {"no object"};
  auto arguments = takeDeclared<TestPayloadArguments>(
      *object,
      [&](std::string_view key, std::string_view why) { notes.push_back(droppedNote(key, why)); });
  return outcome(std::move(arguments), std::move(notes));
}

std::string withSteps(const std::string& steps) {
  return R"({"projectName":"Shop","interactions":)" + steps + "}";
}

TEST(StepReadingTest, ReadsEveryKindOfField) {
  EXPECT_EQ(
      readFromText(withSteps(
          R"([{"udiName":"u","type":"t","toStep":3,"fromStep":-1,"visualCheckpoint":false,)"
          R"("memoryEnabled":true,"arguments":{"b":"2","a":"1","b":"3"},)"
          R"("parameters":{"x":[1,{"y":null}]},"aiSegmentationMode":"m","referencedTestId":"i",)"
          R"("referencedTestName":"n","previousStepCondition":"c","description":"d\u00e9\n",)"
          R"("children":[{"type":"c","description":""}],"other":[{"deep":1}]}])")),
      Notes{R"([{"aiSegmentationMode":"m","arguments":{"a":"1","b":"3"},"children":[)"
            R"({"description":"","type":"c"}],"description":"dé\n","fromStep":-1,)"
            R"("memoryEnabled":true,"parameters":{"x":[1,{"y":null}]},"previousStepCondition":"c",)"
            R"("referencedTestId":"i","referencedTestName":"n","toStep":3,"type":"t",)"
            R"("udiName":"u","visualCheckpoint":false}])"});
}

// Fails when a step that is not as it should be is read in another way than as a value, or when the
// place is lost where it ended.
TEST(StepReadingTest, ReadsOddStepsAsTheirValuesSay) {
  const std::vector<std::string> steps{
      "null", "7", "{}", "[]", "[{}]", "[[]]", "[{},7,{}]", R"([{"type":"a"},{"type":"b"}])",
      // Of members of one name the last counts.
      R"([{"type":"a","type":"b"}])", R"([{"type":1,"type":"b"}])", R"([{"type":"a","type":1}])",
      R"([{"parameters":{"a":1},"parameters":{"b":2}}])",
      R"([{"memoryEnabled":true,"memoryEnabled":null}])",
      // Values of another type, at each place of a step.
      R"([{"type":1,"description":"d"}])", R"([{"description":"d","type":{"a":[1,2]}}])",
      R"([{"type":null,"description":null,"parameters":null,"children":null,"toStep":null}])",
      R"([{"parameters":[1],"type":"t"},{"type":"next"}])", R"([{"memoryEnabled":"true"}])",
      R"([{"memoryEnabled":1},{"visualCheckpoint":"no"}])", R"([{"fromStep":1.0}])",
      R"([{"fromStep":1.5},{"toStep":"1"},{"toStep":9223372036854775807}])",
      R"([{"toStep":9223372036854775808}])", R"([{"toStep":-9223372036854775808}])",
      R"([{"toStep":1e3},{"toStep":-0}])", R"([{"arguments":{"a":1,"b":"2"},"type":"t"}])",
      R"([{"arguments":{"a":{"b":[]}}},{"type":"next"}])", R"([{"arguments":[],"udiName":[]}])",
      // Titles, branches and what lies deeper.
      R"([{"title":"T","type":"t"},{"title":7}])", R"([{"children":[]}])",
      R"([{"children":[{"type":"c","children":[]}]}])",
      R"([{"children":[{"type":"c","children":null}]}])",
      R"([{"children":[{"type":"c","children":[{"type":"deep"}]},{"type":"d"}]},{"type":"e"}])",
      R"([{"children":[{"type":1},{"memoryEnabled":"x"}],"type":"t"}])",
      R"([{"children":[7],"type":"t"}])", R"([{"children":{},"type":"t"}])",
      R"([{"children":[{"arguments":{"a":[{"b":1}]}}],"udiName":"u"},{"type":"next"}])",
      // Commands say what becomes of their description, wherever that stands.
      R"([{"description":" x ","type":"builtIn","parameters":{"command":"goHome"}}])",
      R"([{"type":"builtIn","parameters":{"command":"openApplication"},"description":" x "}])",
      // Keys with escapes.
      R"([{"t\u0079pe":"a","type":"b"}])", R"([{"\u0074ype":"a\"b"}])"};
  for (const auto& each : steps) {
    const std::string json = withSteps(each);
    EXPECT_EQ(readFromText(json), readFromValues(json)) << json;
  }
}

// Fails when steps count that a later member of the same name replaces.
TEST(StepReadingTest, TheLastOfSeveralListsCounts) {
  for (const char* json :
       {R"({"interactions":[{"type":"a"}],"interactions":[{"type":"b"}]})",
        R"({"interactions":[{"type":"a"}],"interactions":7})",
        R"({"interactions":[{"type":"a"}],"interactions":null})",
        R"({"interactions":[7],"interactions":[{"type":"b"}]})",
        R"({"interactions":[{"type":1}],"interactions":[{"type":"b"}],"testName":[1]})", "[]",
        "null", "\"interactions\""}) {
    EXPECT_EQ(readFromText(json), readFromValues(json)) << json;
  }
}

}  // namespace
}  // namespace corvane::testing
