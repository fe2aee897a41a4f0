#include <gtest/gtest.h>
#include <sys/stat.h>

#include "CorvaneCore/json/JsonWriter.h"
#include "corvane_mcp/results/ResultFileStore.h"
#include "corvane_mcp/workspace/PublishedContext.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"

namespace corvane::testing {
namespace {

std::optional<PublishedContext> contextOf(std::string_view text) {
  const TemporaryHome home;
  TestFiles::write(home.path() / "context.json", text);
  return PublishedContext::read(home.path() / "context.json");
}

std::string describe(const PublishedContext::Project& project) {
  const auto given = [](const AnyCodable& value) { return value.isNull() ? "-" : toJson(value); };
  return given(project.name) + " " + given(project.platform) + " " +
         std::to_string(project.testCount);
}

std::string describe(const PublishedContext& context) {
  std::string text;
  for (const auto& project : context.projects()) {
    text += (text.empty() ? "" : "; ") + describe(project);
  }
  return text;
}

TEST(PublishedContextTest, KeepsTheMembersOfTheWorkspaceAndSummariesOfProjects) {
  const auto context = contextOf(
      R"({"appVersion":"3.1","currentProjectName":"A","device":{"name":"x","tests":[1]},)"
      R"("projects":[{"name":"A","platform":"ios","tests":[{"name":"t","steps":[1,2]},{}]},)"
      R"({"name":"B","suites":[[]],"tests":[]},{"name":"C"}],"schemaVersion":1,"stray":[1],)"
      R"("updatedAt":"now","userDefinedInteractions":[{"name":"u"}]})");
  ASSERT_TRUE(context);
  EXPECT_EQ(describe(*context), R"("A" "ios" 2; "B" - 0; "C" - 0)");
  const JsonObject& members = context->members();
  EXPECT_EQ(toJson(*members.find("device")), R"({"name":"x","tests":[1]})");
  EXPECT_EQ(toJson(*members.find("userDefinedInteractions")), R"([{"name":"u"}])");
  EXPECT_EQ(*members.findAs<std::string>("currentProjectName"), "A");
  EXPECT_EQ(*members.findAs<std::string>("appVersion"), "3.1");
  EXPECT_EQ(*members.findAs<std::string>("updatedAt"), "now");
  EXPECT_EQ(*members.findAs<std::int64_t>("schemaVersion"), 1);
  EXPECT_FALSE(members.find("stray"));
}

TEST(PublishedContextTest, GivesAProjectWholeAndAsItStands) {
  const auto context = contextOf(
      "{ \"projects\" : [ {\"name\":\"A\"} , {\"z\":1.5,\"name\":\"B\",\"n\":1.0,\"new\":"
      "{\"k\":[true,null,\"{\\\"]\"]},\"tests\":[{}]}\n,\t{\"name\":\"C\" } ] \n}\n");
  ASSERT_TRUE(context);
  ASSERT_EQ(context->projects().size(), 3U);
  const auto whole = [&](std::size_t i) { return toJson(context->whole(context->projects()[i])); };
  EXPECT_EQ(whole(0), R"({"name":"A"})");
  EXPECT_EQ(whole(1), R"({"n":1,"name":"B","new":{"k":[true,null,"{\"]"]},"tests":[{}],"z":1.5})");
  EXPECT_EQ(whole(2), R"({"name":"C"})");
}

TEST(PublishedContextTest, OrderOfMembersMeansNothing) {
  const auto context = contextOf(
      R"({"projects":[{"tests":[1,[2],{"tests":[]}],"platform":{"tests":[]},"name":"A"}],)"
      R"("currentProjectName":"A"})");
  ASSERT_TRUE(context);
  EXPECT_EQ(describe(*context), R"("A" {"tests":[]} 3)");
  EXPECT_EQ(*context->members().findAs<std::string>("currentProjectName"), "A");
}

TEST(PublishedContextTest, EntriesThatAreNoObjectsArePassedOver) {
  const auto context =
      contextOf(R"({"projects":[1,null,"A",["name",{"name":"in"}],{"name":"B"},true,0.5,{}]})");
  ASSERT_TRUE(context);
  EXPECT_EQ(describe(*context), R"("B" - 0; - - 0)");
  EXPECT_EQ(toJson(context->whole(context->projects()[0])), R"({"name":"B"})");
  EXPECT_EQ(toJson(context->whole(context->projects()[1])), "{}");
}

TEST(PublishedContextTest, ProjectsOfAnotherKindAreNone) {
  for (const char* projects : {"null", "{}", R"({"a":[{"name":"A"}]})", "1", R"("x")", "false"}) {
    const auto context =
        contextOf(R"({"projects":)" + std::string(projects) + R"(,"schemaVersion":1})");
    ASSERT_TRUE(context) << projects;
    EXPECT_TRUE(context->projects().empty()) << projects;
    EXPECT_TRUE(context->members().find("schemaVersion")) << projects;
  }
  EXPECT_TRUE(contextOf("{}")->projects().empty());
}

TEST(PublishedContextTest, TestsOfAnotherKindAreNone) {
  const auto context = contextOf(
      R"({"projects":[{"tests":null},{"tests":{"a":1}},{"tests":"ab"},{"tests":7},{"tests":true},)"
      R"({"tests":1.5}]})");
  ASSERT_TRUE(context);
  EXPECT_EQ(describe(*context), "- - 0; - - 0; - - 0; - - 0; - - 0; - - 0");
}

TEST(PublishedContextTest, LastOfDuplicateKeysWins) {
  const auto context = contextOf(
      R"({"projects":[{"name":"old"}],"updatedAt":1,"projects":[{"tests":[1,2],"name":"X",)"
      R"("name":"B","tests":[3]},{"tests":[1],"tests":null}],"updatedAt":2})");
  ASSERT_TRUE(context);
  EXPECT_EQ(describe(*context), R"("B" - 1; - - 0)");
  EXPECT_EQ(*context->members().findAs<std::int64_t>("updatedAt"), 2);
  EXPECT_EQ(toJson(context->whole(context->projects()[0])), R"({"name":"B","tests":[3]})");
  EXPECT_TRUE(contextOf(R"({"projects":[{"name":"old"}],"projects":3})")->projects().empty());
}

TEST(PublishedContextTest, AMembersNameIsNotMistakenForAnother) {
  const auto context =
      contextOf(R"({"projects":[{"name":"A","begin":7,"end":8,"testCount":9}],"x":{"projects":[1],)"
                R"("schemaVersion":5},"device":[{"projects":[{"name":"D"}]}]})");
  ASSERT_TRUE(context);
  EXPECT_EQ(describe(*context), R"("A" - 0)");
  EXPECT_FALSE(context->members().find("schemaVersion"));
  EXPECT_EQ(toJson(*context->members().find("device")), R"([{"projects":[{"name":"D"}]}])");
  EXPECT_EQ(toJson(context->whole(context->projects()[0])),
            R"({"begin":7,"end":8,"name":"A","testCount":9})");
}

TEST(PublishedContextTest, FindsTheFirstOfANameWhateverItsCase) {
  const auto context = contextOf(
      R"({"projects":[{"name":5},{"platform":"ios"},{"name":"Ünder Ground"},{"name":"ÜNDER ground"},)"
      R"({"name":""}]})");
  ASSERT_TRUE(context);
  EXPECT_EQ(context->find("üNDER GROUND"), &context->projects()[2]);
  EXPECT_EQ(context->find("u\u0308nder ground"), &context->projects()[2]);
  EXPECT_EQ(context->find(""), &context->projects()[4]);
  EXPECT_EQ(context->find("under ground"), nullptr);
  EXPECT_EQ(context->find("5"), nullptr);
  EXPECT_EQ(contextOf("{}")->find("A"), nullptr);
}

TEST(PublishedContextTest, WhatIsNoObjectIsNothing) {
  for (const char* text :
       {"", " ", "[]", "1", "null", "true", R"("x")", R"([{"projects":[]}])", "{", R"({"a":1}})",
        R"({"projects":[{"name":"A"}])", R"({"projects":[{"tests":[{"steps":[tru]}]}]})",
        R"({"projects":[{"tests":[1e999]}]})", R"({"stray":"\ud800"})", "{\"stray\":\"\xFF\"}"}) {
    EXPECT_FALSE(contextOf(text)) << text;
  }
}

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

// Fails when a time that is out of reach counts as one that is not.
TEST_F(RecentResultsTest, AFileWithoutATimeIsNotListed) {
  putResult("present", seconds(1));
  putResult("future", seconds(1));
  // In the year 2300, if the file system reaches it.
  const timespec late{10'413'792'000, 0};
  const timespec both[] = {late, late};
  const auto file = folder / "future.json";
  ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), both, 0), 0);
  struct stat status{};
  ASSERT_EQ(::stat(file.c_str(), &status), 0);
  if (status.st_mtime != late.tv_sec) GTEST_SKIP() << "the file system ends before";
  EXPECT_EQ(listed(), R"([{"requestId":"present","secondsSinceUpdate":1,"status":"passed"}])");
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
