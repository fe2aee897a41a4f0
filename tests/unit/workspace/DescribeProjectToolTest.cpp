#include "corvane_mcp/tools/Tools.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/TemporaryApp.h"
#include "tests/unit/workspace/WorkspaceBench.h"

namespace corvane::testing {
namespace {

const std::string staleNote =
    "warning: Corvane.app is not running; context reflects the last session and may be stale. "
    "run_test/create_test will launch it.";
const std::string dayOldNote =
    "warning: context is over a day old; if projects or tests changed recently it may not reflect "
    "them.";
const std::string nothingOpenNote =
    "note: no project is currently open in Corvane; pass projectName for full detail.";
const std::string noProjectsNote =
    "note: no projects are published yet — create_test will create one.";

class DescribeProjectToolTest : public ::testing::Test {
 protected:
  void publish(std::string_view text) const {
    TestFiles::write(bench.paths.agentContextFile(), text);
  }
  [[nodiscard]] WorkspaceBench::Answer describe(
      std::optional<std::string_view> arguments = std::nullopt) const {
    return bench.call<makeDescribeProjectTool>(arguments);
  }
  /// Expects the answer about a context of the clock's own time while no app runs.
  void expectBrief(std::optional<std::string_view> arguments, const std::string& moreNotes,
                   const std::string& json) const {
    EXPECT_EQ(
        describe(arguments),
        (WorkspaceBench::Answer{"Corvane workspace context (updated 2026-01-31T12:00:00Z).\n" +
                                    staleNote + moreNotes + "\n\n" + json,
                                false}))
        << arguments.value_or("(none)");
  }
  void expectUnavailable() const {
    EXPECT_EQ(
        describe(),
        (WorkspaceBench::Answer{
            "error:context_unavailable\n\nCorvane.app has not published workspace context yet (or "
            "the file is unreadable). Open Corvane.app — it publishes context on launch and "
            "whenever projects/tests/devices change. If describe_project keeps failing, update "
            "Corvane: this tool requires a build with run-feedback support.\n\n  Expected at: " +
                (bench.home.path() / ".local/share/Corvane/AgentMCP/context.json").string(),
            true}));
  }
  void expectUnknown(const std::string& name, const std::string& known) const {
    EXPECT_EQ(
        describe(R"({"projectName":")" + name + "\"}"),
        (WorkspaceBench::Answer{"error:unknown_project\n\nNo project named '" + name +
                                    "' in the published context. Known projects: " + known +
                                    ". Names are matched case-insensitively — check the spelling.",
                                true}));
  }
  /// The first lines of the answer about a context of a certain time and version.
  [[nodiscard]] std::string header(const std::string& updatedAt,
                                   const std::string& version = "1") const {
    publish(R"({"currentProjectName":"x","projects":[{}],"schemaVersion":)" + version +
            R"(,"updatedAt":)" + updatedAt + "}");
    const std::string text = describe().text;
    return text.substr(0, text.find("\n\n"));
  }

  WorkspaceBench bench;
};

TEST_F(DescribeProjectToolTest, WithoutAFileSaysWhereItIsExpected) {
  expectUnavailable();
  EXPECT_EQ(describe("{\"projectName\":\"A\"}"), describe());
  EXPECT_TRUE(bench.logged().empty());
}

TEST_F(DescribeProjectToolTest, AFileThatHoldsNoObjectIsUnavailable) {
  for (const char* text : {"", "[]", "null", "{", R"({"projects":[]}x)", R"("projects")"}) {
    publish(text);
    expectUnavailable();
  }
}

TEST_F(DescribeProjectToolTest, ShowsTheOpenProjectWholeAndTheOthersInShort) {
  publish(
      R"({"appVersion":"3.1","currentProjectName":"Shop","device":{"state":"booted","new":1.0},)"
      R"("projects":[{"name":"Blog","platform":"ios","suites":[],"tests":[{},{}]},)"
      R"({"worldMap":"Home → Cart","tests":[{"steps":[{"type":"tap"}],"name":"Log in","score":0.5}],)"
      R"("name":"Shop","futureKey":{"b":[1,2.50,true,null],"a":"/"}},{"name":"Site","tests":{}}],)"
      R"("schemaVersion":1,"updatedAt":"2026-01-31T12:00:00Z",)"
      R"("userDefinedInteractions":[{"name":"u"}],"futureTopKey":1})");
  const std::string json =
      R"({"appVersion":"3.1","currentProjectName":"Shop","device":{"new":1,"state":"booted"},)"
      R"("otherProjects":[{"name":"Blog","platform":"ios","testCount":2},)"
      R"({"name":"Site","testCount":0}],)"
      R"("project":{"futureKey":{"a":"/","b":[1,2.5,true,null]},"name":"Shop",)"
      R"("tests":[{"name":"Log in","score":0.5,"steps":[{"type":"tap"}]}],"worldMap":"Home → Cart"},)"
      R"("schemaVersion":1,"updatedAt":"2026-01-31T12:00:00Z",)"
      R"("userDefinedInteractions":[{"name":"u"}]})";
  expectBrief(std::nullopt, "", json);
  for (const char* arguments :
       {"{}", "null", "[]", "7", R"("Blog")", R"({"projectName":null})", R"({"projectName":5})",
        R"({"projectName":["Blog"]})", R"({"projectname":"Blog"})"}) {
    expectBrief(arguments, "", json);
  }
}

TEST_F(DescribeProjectToolTest, ANamedProjectIsShownInThePlaceOfTheOpenOne) {
  publish(
      R"({"currentProjectName":"Shop","projects":[{"name":"Shop","tests":[1]},)"
      R"({"name":"My App","x":1},{"name":"my app","x":2}],"updatedAt":"2026-01-31T12:00:00Z"})");
  for (const char* name : {"my app", "My App", "MY APP"}) {
    expectBrief(R"({"projectName":")" + std::string(name) + "\"}", "",
                R"({"currentProjectName":"Shop","otherProjects":[{"name":"Shop","testCount":1},)"
                R"({"name":"my app","testCount":0}],"project":{"name":"My App","x":1},)"
                R"("updatedAt":"2026-01-31T12:00:00Z"})");
  }
}

TEST_F(DescribeProjectToolTest, NamesMatchBeyondAscii) {
  publish(R"({"projects":[{"name":"École"},{"name":"Maße"},{"name":"ΝΗΣΟΣ"}],)"
          R"("updatedAt":"2026-01-31T12:00:00Z"})");
  EXPECT_FALSE(describe(R"({"projectName":"éCOLE"})").isError);
  EXPECT_FALSE(describe(R"({"projectName":"νησος"})").isError);
  EXPECT_FALSE(describe(R"({"projectName":"MAßE"})").isError);
  expectUnknown("MASSE", "Maße, École, ΝΗΣΟΣ");
}

TEST_F(DescribeProjectToolTest, AnUnknownNameIsAnsweredWithTheKnownOnes) {
  publish(
      R"({"projects":[{"name":"b"},{"name":"A"},7,"c",{"name":3},{"platform":"ios"},{"name":"a"}]})");
  expectUnknown("x", "A, a, b");
  expectUnknown("", "A, a, b");
  expectUnknown(" A", "A, a, b");
  expectUnknown("3", "A, a, b");
}

// Fails when an empty list so far counts as the beginning of the list.
TEST_F(DescribeProjectToolTest, EmptyNamesKeepTheirSeparators) {
  publish(R"({"projects":[{"name":""},{"name":"B"},{"name":""}]})");
  expectUnknown("x", ", , B");
}

TEST_F(DescribeProjectToolTest, WithoutNamesThereAreNoKnownOnes) {
  for (const char* projects : {"[]", "[{}]", "null", R"({"name":"A"})", R"(["A"])"}) {
    publish(R"({"projects":)" + std::string(projects) + "}");
    expectUnknown("A", "(none)");
  }
  publish("{}");
  expectUnknown("A", "(none)");
}

TEST_F(DescribeProjectToolTest, WithoutProjectsSaysWhoMakesOne) {
  for (const char* projects : {R"("projects":[],)", R"("projects":{},)", R"("projects":[1,"A"],)",
                               R"("projects":null,)", ""}) {
    publish("{" + std::string(projects) + R"("updatedAt":"2026-01-31T12:00:00Z"})");
    expectBrief(std::nullopt, "\n" + noProjectsNote,
                R"({"otherProjects":[],"updatedAt":"2026-01-31T12:00:00Z"})");
  }
  publish(R"({"currentProjectName":"A","projects":[],"updatedAt":"2026-01-31T12:00:00Z"})");
  expectBrief(
      std::nullopt, "\n" + noProjectsNote,
      R"({"currentProjectName":"A","otherProjects":[],"updatedAt":"2026-01-31T12:00:00Z"})");
}

TEST_F(DescribeProjectToolTest, WithNothingOpenSummarisesAll) {
  for (const char* current : {"", R"("currentProjectName":null,)", R"("currentProjectName":7,)"}) {
    publish("{" + std::string(current) +
            R"("projects":[{"name":"A"},{"name":"B"}],"updatedAt":"2026-01-31T12:00:00Z"})");
    expectBrief(std::nullopt, "\n" + nothingOpenNote,
                R"({"otherProjects":[{"name":"A","testCount":0},{"name":"B","testCount":0}],)"
                R"("updatedAt":"2026-01-31T12:00:00Z"})");
  }
}

TEST_F(DescribeProjectToolTest, AnOpenProjectThatIsNotListedSelectsNone) {
  publish(
      R"({"currentProjectName":"Gone","projects":[{"name":"A"}],"updatedAt":"2026-01-31T12:00:00Z"})");
  expectBrief(std::nullopt, "",
              R"({"currentProjectName":"Gone","otherProjects":[{"name":"A","testCount":0}],)"
              R"("updatedAt":"2026-01-31T12:00:00Z"})");
}

TEST_F(DescribeProjectToolTest, WhatHasNoValueIsLeftOut) {
  publish(R"({"appVersion":null,"currentProjectName":null,"device":null,"projects":[{"name":null,)"
          R"("platform":null,"tests":null}],"schemaVersion":null,"userDefinedInteractions":null,)"
          R"("updatedAt":null})");
  EXPECT_EQ(describe().text, "Corvane workspace context (updated <unknown>).\n" + staleNote + "\n" +
                                 nothingOpenNote + "\n\n" +
                                 R"({"otherProjects":[{"testCount":0}]})");
}

TEST_F(DescribeProjectToolTest, OtherKindsAreCopiedAsTheyStand) {
  publish(R"({"appVersion":3,"device":[1],"projects":[{"name":4,"platform":[0.5]}],)"
          R"("schemaVersion":"1","userDefinedInteractions":{},"updatedAt":5})");
  EXPECT_EQ(describe().text, "Corvane workspace context (updated <unknown>).\n" + staleNote + "\n" +
                                 nothingOpenNote + "\n\n" +
                                 R"({"appVersion":3,"device":[1],"otherProjects":[{"name":4,)"
                                 R"("platform":[0.5],"testCount":0}],"schemaVersion":"1",)"
                                 R"("updatedAt":5,"userDefinedInteractions":{}})");
}

TEST_F(DescribeProjectToolTest, WarnsOfANewerVersionFirst) {
  const std::string date = R"("2026-01-31T12:00:00Z")";
  const std::string top = "Corvane workspace context (updated 2026-01-31T12:00:00Z).\n";
  EXPECT_EQ(header(date, "3"),
            top +
                "warning: context written by a newer Corvane (schema 3); some fields may be "
                "unrecognized.\n" +
                staleNote);
  EXPECT_TRUE(header(date, "2").starts_with(top + "warning: context written by a newer"));
  EXPECT_TRUE(header(date, "2.0").starts_with(top + "warning: context written by a newer"));
  for (const char* version : {"1", "0", "-5", "2.5", R"("3")", "null", "[3]"}) {
    EXPECT_EQ(header(date, version), top + staleNote) << version;
  }
}

TEST_F(DescribeProjectToolTest, WarnsOfAnOldContextOnlyWhileTheAppRuns) {
  const std::string old = R"("2026-01-30T11:00:00Z")";
  const std::string top = "Corvane workspace context (updated 2026-01-30T11:00:00Z).";
  EXPECT_EQ(header(old), top + "\n" + staleNote);
  TemporaryApp app(bench.home.path() / "Corvane.app");
  app.open();
  EXPECT_EQ(header(old), top + "\n" + dayOldNote);
  EXPECT_EQ(header(old, "2"),
            top +
                "\nwarning: context written by a newer Corvane (schema 2); some fields may be "
                "unrecognized.\n" +
                dayOldNote);
}

TEST_F(DescribeProjectToolTest, ADayIsCountedToTheFractionOfASecond) {
  TemporaryApp app(bench.home.path() / "Corvane.app");
  app.open();
  const std::string top = "Corvane workspace context (updated 2026-01-30T12:00:00Z).";
  const std::string exactlyADay = R"("2026-01-30T12:00:00Z")";
  EXPECT_EQ(header(exactlyADay), top);
  bench.clock.pass(std::chrono::milliseconds(1));
  EXPECT_EQ(header(exactlyADay), top + "\n" + dayOldNote);
}

TEST_F(DescribeProjectToolTest, ADateThatIsNoneIsShownAndHasNoAge) {
  TemporaryApp app(bench.home.path() / "Corvane.app");
  app.open();
  for (const char* date : {"2020-01-01T00:00:00.5Z", "long ago", "", "2020-01-01"}) {
    EXPECT_EQ(header("\"" + std::string(date) + "\""),
              "Corvane workspace context (updated " + std::string(date) + ").");
  }
  EXPECT_EQ(header("7"), "Corvane workspace context (updated <unknown>).");
  EXPECT_EQ(header(R"("9999-12-31T23:59:59Z")"),
            "Corvane workspace context (updated 9999-12-31T23:59:59Z).");
  EXPECT_EQ(header(R"("0001-01-01T00:00:00Z")"),
            "Corvane workspace context (updated 0001-01-01T00:00:00Z).\n" + dayOldNote);
}

TEST_F(DescribeProjectToolTest, NeitherWritesNorLaunches) {
  publish(R"({"projects":[]})");
  std::filesystem::create_directories(bench.home.path() / "Applications" / "Corvane.app");
  const auto before = bench.home.entries();
  EXPECT_FALSE(describe().isError);
  EXPECT_EQ(bench.home.entries(), before);
  EXPECT_TRUE(bench.logged().empty());
}

}  // namespace
}  // namespace corvane::testing
