#include <gtest/gtest.h>

#include "CorvaneCore/capture/CaptureSession.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/results/AgentRunResult.h"

namespace corvane::testing {
namespace {

using Result = AgentRunResult;
using Step = AgentRunResult::Step;

TEST(LenientReadingTest, TakesKeysFromTheDeclaration) {
  static_assert(keyOf<&Result::status>() == "status");
  static_assert(keyOf<&Result::source>() == "source");
  static_assert(keyOf<&Result::queuePosition>() == "queuePosition");
  static_assert(keyOf<&Step::failureReason>() == "failureReason");
}

TEST(LenientReadingTest, FindsWhatIsHeldAsItsTypeWantsIt) {
  const AnyCodable result =
      readJson(R"({"status":"odd","terminal":false,"updatedAt":"no date","queuePosition":2,)"
               R"("progress":{"currentStep":"x"},"tests":[1]})");
  EXPECT_EQ(*findField<&Result::status>(result), "odd");
  EXPECT_EQ(*findField<&Result::terminal>(result), false);
  EXPECT_EQ(*findField<&Result::updatedAt>(result), "no date");
  EXPECT_EQ(*findField<&Result::queuePosition>(result), 2);
  EXPECT_EQ(findField<&Result::progress>(result)->size(), 1U);
  EXPECT_EQ(findField<&Result::tests>(result)->size(), 1U);
  const AnyCodable frame = readJson(R"({"status":"unheard of"})");
  EXPECT_EQ(*findField<&CaptureSession::Frame::status>(frame), "unheard of");
}

TEST(LenientReadingTest, TakesEverythingElseForAbsent) {
  for (const char* text :
       {R"({"status":1,"terminal":"true","queuePosition":1.5,"progress":[],"tests":{}})",
        R"({"status":null,"terminal":null,"queuePosition":null,"progress":null,"tests":null})",
        R"({"Status":"x"})", "{}", "[]", "7"}) {
    const AnyCodable result = readJson(text);
    EXPECT_FALSE(findField<&Result::status>(result)) << text;
    EXPECT_FALSE(findField<&Result::terminal>(result)) << text;
    EXPECT_FALSE(findField<&Result::queuePosition>(result)) << text;
    EXPECT_FALSE(findField<&Result::progress>(result)) << text;
    EXPECT_FALSE(findField<&Result::tests>(result)) << text;
  }
}

TEST(LenientReadingTest, FindsTheRawValueOfAnyKind) {
  const AnyCodable result = readJson(R"({"status":[1],"terminal":null})");
  EXPECT_EQ(*rawField<&Result::status>(result), AnyCodable(AnyCodable::Array{1}));
  EXPECT_TRUE(rawField<&Result::terminal>(result)->isNull());
  EXPECT_FALSE(rawField<&Result::source>(result));
}

TEST(LenientReadingTest, KeepsOnlyTheMembersAskedFor) {
  const JsonObject members = readMembers<&Result::status, &Result::terminal>(
      R"({"tests":[{"steps":[]}],"terminal":1,"status":"a"})");
  EXPECT_EQ(toJson(members), R"({"status":"a","terminal":1})");
  EXPECT_THROW((void)readMembers<&Result::status>("[]"), DecodeError);
  EXPECT_THROW((void)readMembers<&Result::status>(R"({"other":01})"), DecodeError);
}

TEST(LenientReadingTest, TakesTheFieldsThatFit) {
  JsonObject object = *readJson(R"({"index":"x","title":"T","description":"D","status":7,)"
                                R"("healedByAI":true,"durationSeconds":null,"zzz":1})")
                           .object();
  Step step;
  step.status = "kept";
  step.title = "kept too";
  std::vector<std::string> misfits;
  takeFieldsExcept<&Step::title>(object, step, [&](std::string_view key, std::string_view why) {
    misfits.push_back(std::string(key).append(" ").append(why));
  });
  EXPECT_EQ(step.index, 0);
  EXPECT_EQ(step.title, "kept too");
  EXPECT_EQ(step.description, "D");
  EXPECT_EQ(step.status, "kept");
  EXPECT_TRUE(step.healedByAI);
  EXPECT_FALSE(step.durationSeconds);
  EXPECT_EQ(misfits,
            (std::vector<std::string>{"index expected an integer", "status expected a string"}));
}

}  // namespace
}  // namespace corvane::testing
