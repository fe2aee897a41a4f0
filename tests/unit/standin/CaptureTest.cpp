#include <gmock/gmock.h>

#include <fstream>

#include "CorvaneCore/capture/CaptureSession.h"
#include "corvane_mcp/trace/PictureFormats.h"
#include "tests/unit/standin/StandInFixture.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class CaptureTest : public StandInFixture {
 protected:
  CaptureTest() { settings.captures = true; }

  [[nodiscard]] std::filesystem::path captures() const {
    return StandInPaths(paths).capturesDirectory();
  }
  /// "before 0", "after 0" and so on.
  static std::vector<std::string> frames(const std::filesystem::path& folder) {
    std::vector<std::string> found;
    for (const auto& frame : CaptureSession::read(folder).frames) {
      found.push_back(std::string(rawValue(frame.status)) + " " + std::to_string(frame.stepIndex));
    }
    return found;
  }
  static PictureSize sizeOf(const std::filesystem::path& file) {
    const std::string bytes = readFile(file);
    PictureInput input(
        std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
    return decodePng(input, 100).fullSize;
  }
};

TEST_F(CaptureTest, ARunLeavesAPictureBeforeAndAfterEveryStep) {
  start();
  const auto last = finalResult(drop({"Browse the catalogue"}));
  ASSERT_TRUE(last.trace);
  EXPECT_FALSE(last.trace->failedStepIndex);
  EXPECT_EQ(last.trace->lastStepIndex, 4);
  EXPECT_EQ(last.tests.value().at(0).trace.value().artifactsDir, last.trace->artifactsDir);
  const std::filesystem::path folder = last.trace->artifactsDir;
  EXPECT_TRUE(folder.is_absolute());
  EXPECT_THAT(
      frames(folder),
      ElementsAre("beforeStep 0", "afterStep 0", "beforeStep 1", "afterStep 1", "beforeStep 2",
                  "afterStep 2", "beforeStep 3", "afterStep 3", "beforeStep 4", "afterStep 4"));
  for (const auto& frame : CaptureSession::read(folder).frames) {
    EXPECT_EQ(sizeOf(folder / frame.imageFileName), (PictureSize{1170, 2532}));
  }
}

TEST_F(CaptureTest, TouchesAreFractionsOnTheFrameBeforeTheStep) {
  start();
  const auto last = finalResult(drop({"Browse the catalogue"}));
  for (const auto& frame : CaptureSession::read(last.trace.value().artifactsDir).frames) {
    const auto touches = frame.touches.value_or(std::vector<Touch>());
    const bool isBefore = frame.status == FrameStatus::beforeStep;
    const bool isScroll = isBefore && frame.stepIndex == 2;
    const bool isTap = isBefore && frame.stepIndex == 3;
    ASSERT_THAT(touches, SizeIs(isScroll || isTap ? 1 : 0)) << frame.stepIndex;
    for (const auto& touch : touches) {
      EXPECT_EQ(touch.isDrag(), isScroll);
      EXPECT_GT(touch.x, 0);
      EXPECT_LT(touch.x, 1);
      EXPECT_GT(touch.y, 0);
      EXPECT_LT(touch.y, 1);
    }
  }
}

TEST_F(CaptureTest, AFailingStepHasAPictureOfTheFailure) {
  setOutcome("Browse the catalogue", TestOutcome::Kind::failed).failedStep = 3;
  settings.outcomes["Browse the catalogue"].failureReason = "The list did not open.";
  start();
  const auto last = finalResult(drop({"Browse the catalogue"}));
  EXPECT_EQ(last.trace.value().failedStepIndex, 3);
  EXPECT_EQ(last.trace->lastStepIndex, 3);
  const auto session = CaptureSession::read(last.trace->artifactsDir);
  ASSERT_THAT(session.frames, SizeIs(8));
  EXPECT_EQ(session.frames.back().status, FrameStatus::onFailure);
  EXPECT_THAT(session.frames.back().touches.value(), SizeIs(1));
}

TEST_F(CaptureTest, EveryTestOfARunHasASessionOfItsOwn) {
  start();
  const auto last = finalResult(drop({"Browse the catalogue", "Add to cart and remove"}));
  const auto& tests = last.tests.value();
  EXPECT_EQ(last.trace.value().artifactsDir, tests.at(1).trace.value().artifactsDir);
  EXPECT_NE(tests.at(0).trace.value().artifactsDir, tests.at(1).trace.value().artifactsDir);
  EXPECT_EQ(tests.at(1).trace->lastStepIndex, 6);
  EXPECT_THAT(frames(tests.at(1).trace->artifactsDir), SizeIs(14));
}

TEST_F(CaptureTest, TheRunPointsToTheTestThatFailed) {
  start();
  const auto last = finalResult(drop({"Redeem a voucher", "Browse the catalogue"}));
  EXPECT_EQ(last.trace.value().artifactsDir, last.tests.value().at(0).trace.value().artifactsDir);
  EXPECT_EQ(last.trace->failedStepIndex, 5);
}

TEST_F(CaptureTest, ATestThatWasCancelledHasThePicturesTakenByThen) {
  setOutcome("Browse the catalogue", TestOutcome::Kind::hold);
  start();
  const auto id = drop({"Browse the catalogue"});
  pass(std::chrono::seconds(2));
  dropCancelMarker(id);
  const auto last = finalResult(id);
  EXPECT_EQ(last.status, "cancelled");
  EXPECT_EQ(last.trace.value().lastStepIndex, 0);
  EXPECT_THAT(frames(last.trace->artifactsDir), ElementsAre("beforeStep 0"));
}

TEST_F(CaptureTest, SwitchedOffNothingIsRecorded) {
  settings.captures = false;
  start();
  const auto last = finalResult(drop({"Browse the catalogue"}));
  EXPECT_FALSE(last.trace);
  EXPECT_FALSE(last.tests.value().at(0).trace);
  EXPECT_FALSE(fileExists(captures()));
}

TEST_F(CaptureTest, TheSessionsOfOldRunsAreRemoved) {
  // The names do not follow the ages.
  const auto runFolder = [this](unsigned age) {
    return captures() / ("00000000-0000-4000-8000-0000000000" + std::to_string(age * 7 % 30 + 10));
  };
  const auto newest = std::filesystem::file_time_type::clock::now();
  for (unsigned age = 0; age < 30; ++age) {
    writeFileWhole(runFolder(age) / "1" / "session.json", "{}");
    std::filesystem::last_write_time(runFolder(age), newest - std::chrono::hours(age + 1));
  }
  writeFileWhole(captures() / "notes.txt", "mine");
  std::filesystem::create_directory(captures() / "my own");
  start();
  const auto last = finalResult(drop({"Browse the catalogue"}));
  EXPECT_TRUE(last.trace.value().artifactsDir.ends_with("Captures/" + last.requestId + "/1"));
  EXPECT_TRUE(fileExists(runFolder(18)));
  EXPECT_FALSE(fileExists(runFolder(19)));
  EXPECT_FALSE(fileExists(runFolder(29)));
  EXPECT_TRUE(fileExists(captures() / "notes.txt"));
  EXPECT_TRUE(fileExists(captures() / "my own"));
}

TEST_F(CaptureTest, AFolderThatIsTakenAwayIsNotBroughtBack) {
  start();
  const auto id = drop({"Browse the catalogue"});
  pass(std::chrono::seconds(1));
  std::filesystem::remove_all(captures());
  EXPECT_EQ(finalResult(id).status, "passed");
  EXPECT_FALSE(fileExists(captures()));
}

TEST_F(CaptureTest, ARunGoesOnWhereNothingCanBeRecorded) {
  std::ofstream(captures()) << "in the way";
  start();
  const auto last = finalResult(drop({"Browse the catalogue"}));
  EXPECT_EQ(last.status, "passed");
  EXPECT_FALSE(last.trace);
  EXPECT_NE(readFile(StandInPaths(paths).logFile()).find("a test is not captured: "),
            std::string::npos);
}

}  // namespace
}  // namespace corvane::testing
