#include "corvane_mcp/trace/CaptureManifest.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane::testing {
namespace {

std::string frame(std::int64_t step, const std::string& status, const std::string& name) {
  return R"({"stepIndex":)" + std::to_string(step) + R"(,"status":")" + status +
         R"(","imageFileName":")" + name + R"("})";
}

StepFrames framesIn(const std::string& list, std::int64_t step = 3) {
  return readStepFrames(R"({"frames":[)" + list + "]}", step);
}

std::string nameOf(const std::optional<CaptureFrame>& frame) {
  return frame ? frame->imageFileName : "(none)";
}

std::vector<Touch> touchesIn(const std::string& touches) {
  return framesIn(R"({"stepIndex":3,"status":"beforeStep","imageFileName":"a.png","touches":)" +
                  touches + "}")
      .before->touches;
}

TEST(CaptureManifestTest, PicksTheFramesOfTheStep) {
  const auto frames = framesIn(frame(2, "beforeStep", "a") + "," + frame(3, "beforeStep", "b") +
                               "," + frame(3, "afterStep", "c") + "," + frame(4, "afterStep", "d"));
  EXPECT_EQ(nameOf(frames.before), "b");
  EXPECT_EQ(nameOf(frames.after), "c");
}

TEST(CaptureManifestTest, AFailureIsTheAfterFrameWhereverItStands) {
  EXPECT_EQ(nameOf(framesIn(frame(3, "onFailure", "f")).after), "f");
  EXPECT_EQ(nameOf(framesIn(frame(3, "onFailure", "f") + "," + frame(3, "afterStep", "a")).after),
            "f");
  EXPECT_EQ(nameOf(framesIn(frame(3, "afterStep", "a") + "," + frame(3, "onFailure", "f")).after),
            "f");
}

TEST(CaptureManifestTest, TheLastOfOneStatusCounts) {
  const auto frames =
      framesIn(frame(3, "beforeStep", "b1") + "," + frame(3, "afterStep", "a1") + "," +
               frame(3, "beforeStep", "b2") + "," + frame(3, "afterStep", "a2"));
  EXPECT_EQ(nameOf(frames.before), "b2");
  EXPECT_EQ(nameOf(frames.after), "a2");
}

TEST(CaptureManifestTest, AStepMayHaveNoFrames) {
  EXPECT_TRUE(framesIn("").empty());
  EXPECT_TRUE(framesIn(frame(2, "beforeStep", "a")).empty());
  EXPECT_TRUE(framesIn(frame(3, "duringStep", "a")).empty());
}

TEST(CaptureManifestTest, UnusableFramesCostOnlyThemselves) {
  const std::string good = frame(3, "beforeStep", "good");
  for (const std::string bad :
       {"null", "7", "[]", "{}", R"({"stepIndex":3})", R"({"stepIndex":"3","status":"beforeStep"})",
        R"({"stepIndex":3.5,"status":"beforeStep"})", R"({"stepIndex":3,"status":"BeforeStep"})",
        R"({"stepIndex":3,"status":["beforeStep"]})", R"({"stepIndex":null,"status":null})"}) {
    EXPECT_EQ(nameOf(framesIn(good + "," + bad).before), "good") << bad;
    EXPECT_EQ(nameOf(framesIn(bad + "," + good).before), "good") << bad;
  }
}

TEST(CaptureManifestTest, AWholeNumberIsAnIntegerHoweverItIsSpelled) {
  EXPECT_FALSE(framesIn(R"({"stepIndex":3.0,"status":"beforeStep"})").empty());
}

TEST(CaptureManifestTest, AnUnusableNameReadsAsNone) {
  for (const std::string name : {"null", "7", R"(["a.png"])"}) {
    const auto frames =
        framesIn(R"({"stepIndex":3,"status":"afterStep","imageFileName":)" + name + "}");
    EXPECT_EQ(nameOf(frames.after), "") << name;
  }
  EXPECT_EQ(nameOf(framesIn(R"({"stepIndex":3,"status":"afterStep"})").after), "");
}

TEST(CaptureManifestTest, ReadsTapsAndDrags) {
  const auto touches = touchesIn(R"([{"x":1,"y":2.5},{"x":1,"y":2,"endX":3,"endY":4.5}])");
  ASSERT_EQ(touches.size(), 2U);
  EXPECT_EQ(touches[0].x, 1);
  EXPECT_EQ(touches[0].y, 2.5);
  EXPECT_FALSE(touches[0].isDrag());
  ASSERT_TRUE(touches[1].isDrag());
  EXPECT_EQ(touches[1].endX, 3);
  EXPECT_EQ(touches[1].endY, 4.5);
}

// Fails when an end that is no number costs the touch, or passes for one.
TEST(CaptureManifestTest, WithoutBothEndsATouchIsATap) {
  for (const std::string ends :
       {R"("endX":3)", R"("endY":3)", R"("endX":3,"endY":null)", R"("endX":"3","endY":4)",
        R"("endX":3,"endY":[4])", R"("endX":{"x":3},"endY":4)", R"("endX":true,"endY":4)"}) {
    const auto touches = touchesIn(R"([{"x":1,"y":2,)" + ends + "}]");
    ASSERT_EQ(touches.size(), 1U) << ends;
    EXPECT_EQ(touches[0].x, 1) << ends;
    EXPECT_EQ(touches[0].y, 2) << ends;
    EXPECT_FALSE(touches[0].isDrag()) << ends;
  }
}

TEST(CaptureManifestTest, UnusableTouchesCostOnlyThemselves) {
  EXPECT_EQ(touchesIn(R"([null,7,{},[1,2],{"x":1},{"x":"1","y":2},{"x":1,"y":[2]},)"
                      R"({"x":1,"y":2,"pressure":{"x":[3]}}])")
                .size(),
            1U);
  EXPECT_TRUE(touchesIn("null").empty());
  EXPECT_TRUE(touchesIn(R"({"x":1,"y":2})").empty());
}

// Fails when the first touches of a frame are all that is taken, however many they are.
TEST(CaptureManifestTest, EveryOneOfManyTouchesIsTaken) {
  constexpr int count = 20'000;
  std::string list = R"({"x":0,"y":2})";
  for (int i = 1; i < count; ++i) list += R"(,{"x":)" + std::to_string(i) + R"(,"y":2})";
  const auto touches = touchesIn("[" + list + "]");
  ASSERT_EQ(touches.size(), std::size_t{count});
  EXPECT_EQ(touches.back().x, count - 1);
}

TEST(CaptureManifestTest, OfEqualKeysTheLastCounts) {
  const auto frames = readStepFrames(
      R"({"frames":7,"frames":[{"stepIndex":2,"stepIndex":3,"status":7,"status":"beforeStep",)"
      R"("imageFileName":"a","imageFileName":"b","touches":[{"x":1,"x":2,"y":3}],)"
      R"("touches":[{"y":null,"x":4,"y":5}]}]})",
      3);
  EXPECT_EQ(nameOf(frames.before), "b");
  ASSERT_EQ(frames.before.value().touches.size(), 1U);
  EXPECT_EQ(frames.before->touches[0].x, 4);
  EXPECT_EQ(frames.before->touches[0].y, 5);
}

TEST(CaptureManifestTest, OtherTextsAreNoManifest) {
  for (const std::string text : {"", "{", "[]", "7", "{}", R"({"frames":{}})", R"({"frames":null})",
                                 R"({"frames":[],"frames":7})", R"({"frames":[]} x)"}) {
    EXPECT_THROW((void)readStepFrames(text, 0), DecodeError) << text;
  }
}

}  // namespace
}  // namespace corvane::testing
