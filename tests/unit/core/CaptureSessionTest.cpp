#include "CorvaneCore/capture/CaptureSession.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryHome.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

constexpr const char* fullText =
    R"({"frames":[{"imageFileName":"1.png","status":"beforeStep","stepIndex":2,)"
    R"("touches":[{"endX":0.25,"endY":0.5,"x":0.75,"y":0.5}]}]})";

TEST(CaptureSessionTest, EveryMemberFollowsItsRule) {
  expectRecordRules<CaptureSession>(
      fullText, {
                    {"frames", "an array", Presence::required},
                    {"frames[0]", "an object", Presence::entry},
                    {"frames[0].imageFileName", "a string", Presence::required},
                    {"frames[0].status", "a string", Presence::required},
                    {"frames[0].stepIndex", "an integer", Presence::required},
                    {"frames[0].touches", "an array", Presence::optional},
                    {"frames[0].touches[0]", "an object", Presence::entry},
                    {"frames[0].touches[0].endX", "a number", Presence::optional},
                    {"frames[0].touches[0].endY", "a number", Presence::optional},
                    {"frames[0].touches[0].x", "a number", Presence::required},
                    {"frames[0].touches[0].y", "a number", Presence::required},
                });
}

TEST(CaptureSessionTest, IsWrittenIntoItsFolder) {
  const TemporaryHome home;
  CaptureSession session;
  session.frames.push_back({.stepIndex = 2,
                            .status = FrameStatus::beforeStep,
                            .imageFileName = "1.png",
                            .touches = std::vector{Touch{0.75, 0.5, 0.25, 0.5}}});
  session.write(home.path() / "session");
  EXPECT_EQ(readFile(home.path() / "session" / "session.json"), fullText);
  EXPECT_EQ(CaptureSession::read(home.path() / "session").frames.at(0).touches->at(0).endX, 0.25);
}

}  // namespace
}  // namespace corvane::testing
