#include "corvane_mcp/results/ResultFileStore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "CorvaneCore/json/JsonWriter.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"

namespace corvane::testing {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

const FileTime now{seconds(1769860800)};

/// A results folder in which the test puts files of any age.
class RecentResultsTest : public ::testing::Test {
 protected:
  void put(const std::string& name, std::string_view text, milliseconds age) {
    TestFiles::write(folder / name, text);
    TestFiles::setModified(folder / name, now - age);
  }
  /// A result that says no more than it must.
  void putResult(const std::string& id, seconds age) {
    put(id + ".json", R"({"requestId":")" + id + R"(","status":"passed"})", age);
  }

  [[nodiscard]] std::string listed() const { return toJson(recentResults(home.paths(), now)); }
  [[nodiscard]] std::string listedIds() const {
    std::string ids;
    for (const auto& summary : recentResults(home.paths(), now)) {
      ids += (ids.empty() ? "" : " ") + *summary.findAs<std::string>("requestId");
    }
    return ids;
  }

  TemporaryHome home;
  std::filesystem::path folder = home.paths().agentResultsDirectory();
};

TEST_F(RecentResultsTest, CopiesWhatHasTheRightType) {
  put("a.json",
      R"({"message":"m","projectName":"Shop","requestId":"A","schemaVersion":3,"source":"run_test",)"
      R"("status":"failed","terminal":true,"tests":[{"status":"x"}]})",
      seconds(5));
  put("b.json",
      R"({"projectName":7,"requestId":"B","source":null,"status":"new","terminal":"yes"})",
      seconds(6));
  EXPECT_EQ(listed(),
            R"([{"projectName":"Shop","requestId":"A","secondsSinceUpdate":5,"source":"run_test",)"
            R"("status":"failed","terminal":true},)"
            R"({"requestId":"B","secondsSinceUpdate":6,"status":"new"}])");
}

TEST_F(RecentResultsTest, ListsTheFiveNewestFirst) {
  const std::vector<seconds> ages{seconds(30), seconds(10), seconds(70), seconds(20),
                                  seconds(50), seconds(40), seconds(60)};
  for (const auto age : ages) putResult("r" + std::to_string(age.count()), age);
  EXPECT_EQ(listedIds(), "r10 r20 r30 r40 r50");
}

TEST_F(RecentResultsTest, OneThatMakesNoSenseIsNotReplacedByTheSixth) {
  for (int i = 2; i <= 7; ++i) putResult("r" + std::to_string(i), seconds(i));
  for (const char* text :
       {"", "{", "[]", "null", R"({"requestId":"x"})", R"({"status":"passed"})",
        R"({"requestId":1,"status":"passed"})", R"({"requestId":"x","status":null})"}) {
    put("newest.json", text, seconds(1));
    EXPECT_EQ(listedIds(), "r2 r3 r4 r5") << text;
  }
}

TEST_F(RecentResultsTest, FilesOfOneTimeStandInTheOrderOfTheirNames) {
  for (const char* id : {"d", "b", "f", "a", "c", "e"}) putResult(id, seconds(9));
  EXPECT_EQ(listedIds(), "a b c d e");
}

TEST_F(RecentResultsTest, TimesAreToldApartBelowTheSecond) {
  put("a.json", R"({"requestId":"older","status":"s"})", milliseconds(2400));
  put("b.json", R"({"requestId":"newer","status":"s"})", milliseconds(2399));
  EXPECT_EQ(listedIds(), "newer older");
}

TEST_F(RecentResultsTest, AgesAreTruncatedTowardZero) {
  put("a.json", R"({"requestId":"a","status":"s"})", milliseconds(-1900));
  put("b.json", R"({"requestId":"b","status":"s"})", milliseconds(-900));
  put("c.json", R"({"requestId":"c","status":"s"})", milliseconds(999));
  put("d.json", R"({"requestId":"d","status":"s"})", milliseconds(90999));
  EXPECT_EQ(listed(), R"([{"requestId":"a","secondsSinceUpdate":-1,"status":"s"},)"
                      R"({"requestId":"b","secondsSinceUpdate":0,"status":"s"},)"
                      R"({"requestId":"c","secondsSinceUpdate":0,"status":"s"},)"
                      R"({"requestId":"d","secondsSinceUpdate":90,"status":"s"}])");
}

TEST_F(RecentResultsTest, OtherNamesAreNotLookedAt) {
  const char* text = R"({"requestId":"x","status":"s"})";
  for (const char* name : {".hidden.json", "a.JSON", "b.json.tmp", "c.txt", "json", ".json"}) {
    put(name, text, seconds(1));
  }
  EXPECT_EQ(listedIds(), "");
  put("a.b.json", text, seconds(1));
  EXPECT_EQ(listedIds(), "x");
}

TEST_F(RecentResultsTest, WhatIsNoFileTakesAPlaceAndIsLeftOut) {
  for (int i = 5; i <= 9; ++i) putResult("r" + std::to_string(i), seconds(i));
  std::filesystem::create_directory(folder / "folder.json");
  TestFiles::setModified(folder / "folder.json", now - seconds(1));
  ASSERT_EQ(::mkfifo((folder / "fifo.json").c_str(), 0600), 0);
  TestFiles::setModified(folder / "fifo.json", now - seconds(2));
  std::filesystem::create_symlink(folder / "nowhere", folder / "link.json");
  EXPECT_EQ(listedIds(), "r5 r6 r7");
}

TEST_F(RecentResultsTest, WithoutAFolderThereIsNothing) {
  EXPECT_EQ(listed(), "[]");
  TestFiles::write(folder, "a file in its place");
  EXPECT_EQ(listed(), "[]");
}

}  // namespace
}  // namespace corvane::testing
