#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "FakeServerScript.h"
#include "ProgramRun.h"
#include "ReportFixture.h"
#include "corvanectl/report/ReportFiles.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Umask.h"

namespace corvane::testing {
namespace {

using namespace ctl;

/// A run of one test of two steps, with captures.
const std::string captured = resultText(
    R"("status":"failed","projectName":"Shop","tests":[{"testId":"1","testName":"Pay",)"
    R"("status":"failed","durationSeconds":3,"trace":{"artifactsDir":"/captures"},"steps":[)"
    R"({"index":0,"title":"TAP","description":"Tap Cart","status":"passed"},)"
    R"({"index":1,"title":"TAP","description":"Tap Pay","status":"failed"},)"
    R"({"index":2,"title":"TAP","description":"Tap OK","status":"skipped"}]}])");

/// The commands of one get_result call that is answered with the result and two pictures.
std::vector<std::string> withPictures(int step) {
  const AnyCodable caption(AnyCodable::Object{
      {"type", "text"},
      {"text", "step " + std::to_string(step) +
                   " screenshots (before, after) — corner brackets mark where Corvane touched "
                   "(drags also draw a line to the end point)"}});
  return {"expect tools/call",
          R"(result {"content":[{"type":"text","text":"status: failed (terminal)\n\n{}"},)" +
              toJson(caption) + R"(,{"type":"image","data":"Zm9v","mimeType":"image/jpeg"},)" +
              R"({"type":"image","data":"YmFy","mimeType":"image/jpeg"}],"isError":false})"};
}

std::vector<std::string> joined(std::vector<std::vector<std::string>> parts) {
  std::vector<std::string> all;
  for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
  return greeted(all);
}

class ReportCommandTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string file(const char* name) const { return directory.path() / name; }

  TemporaryDirectory directory;
};

TEST_F(ReportCommandTest, WritesEveryReport) {
  const Umask usual(022);
  const FakeServerScript script(
      joined({finishedResult("failed", captured), withPictures(0), withPictures(1)}));
  const auto run =
      runWithFakeServer({"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--junit",
                         file("new/a.xml"), "--html", file("b.html"), "--markdown", file("c.md")});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, "");
  EXPECT_NE(readFile(file("new/a.xml")).find("<testcase name=\"Pay\""), std::string::npos);
  EXPECT_TRUE(readFile(file("c.md")).starts_with("## ❌ Shop: failed\n"));
  const std::string page = readFile(file("b.html"));
  EXPECT_NE(page.find("<figcaption>before</figcaption>"), std::string::npos);
  EXPECT_NE(page.find("src=\"data:image/jpeg;base64,YmFy\""), std::string::npos);
  EXPECT_TRUE(page.ends_with("</html>\n"));
  // Fails when reports are as private as what the server writes: they are made to be shown around.
  EXPECT_EQ(TestFiles::mode(file("b.html")), 0644U);
  EXPECT_EQ(TestFiles::mode(file("new/a.xml")), 0644U);
}

// Fails when it asks for pictures that there cannot be, or for another test's.
TEST_F(ReportCommandTest, AsksForThePicturesOfEachStep) {
  const FakeServerScript script(
      joined({finishedResult("failed", captured), withPictures(0), withPictures(1)}));
  ASSERT_EQ(runWithFakeServer(
                {"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--html", file("b.html")})
                .status,
            1);
  std::vector<std::string> asked;
  for (const auto& line : script.received()) {
    const AnyCodable message = readJson(line);
    if (*message.find("method") != AnyCodable("tools/call")) continue;
    asked.push_back(line.substr(line.find("\"arguments\"")));
  }
  ASSERT_EQ(asked.size(), 3U);
  EXPECT_TRUE(
      asked[0].starts_with(R"("arguments":{"requestId":"0a1b2c3d-0000-4000-8000-00000000abcd"})"))
      << asked[0];
  EXPECT_TRUE(asked[2].starts_with(
      R"("arguments":{"includeStepTrace":true,"requestId":"0a1b2c3d-0000-4000-8000-00000000abcd","traceStepIndex":1,"traceTestIndex":0})"))
      << asked[2];
}

// Older apps tell only of the run where its captures are.
TEST_F(ReportCommandTest, AsksForThePicturesOfTheOnlyTest) {
  const std::string result =
      resultText(R"("status":"passed","trace":{"artifactsDir":"/captures"},"tests":[{"testId":"1",)"
                 R"("testName":"Pay","status":"passed","durationSeconds":3,"steps":[)"
                 R"({"index":0,"title":"TAP","description":"Tap Cart","status":"passed"}]}])");
  const FakeServerScript script(joined({finishedResult("passed", result), withPictures(0)}));
  ASSERT_EQ(runWithFakeServer(
                {"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--html", file("b.html")})
                .status,
            0);
  const std::string asked = script.received().back();
  EXPECT_NE(asked.find("\"traceStepIndex\":0"), std::string::npos) << asked;
  EXPECT_EQ(asked.find("traceTestIndex"), std::string::npos) << asked;
}

TEST_F(ReportCommandTest, AsksForNoPicturesUnlessThereIsAPage) {
  const FakeServerScript script(joined({finishedResult("passed", captured)}));
  EXPECT_EQ(runWithFakeServer(
                {"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--junit", file("a.xml")})
                .status,
            0);
}

TEST_F(ReportCommandTest, EndsAsTheRequestDid) {
  for (const auto& [status, expected] :
       {std::pair("passed", 0), std::pair("failed", 1), std::pair("blocked", 3)}) {
    const FakeServerScript script(joined({finishedResult(status, "{}")}));
    EXPECT_EQ(runWithFakeServer(
                  {"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--markdown", file("c.md")})
                  .status,
              expected);
  }
}

TEST_F(ReportCommandTest, WaitsForNothing) {
  const FakeServerScript script(
      joined({{"expect tools/call",
               textResult("status: running (NOT terminal — run still in progress, call get_result "
                          "again)\nappRunning: true\n\n{}")}}));
  const auto run = runWithFakeServer(
      {"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--junit", file("a.xml")});
  EXPECT_EQ(run.status, 4);
  EXPECT_EQ(run.errors,
            "corvanectl: the request has not finished, its status is running; 'corvanectl follow "
            "0a1b2c3d-0000-4000-8000-00000000abcd' waits for it\n");
  EXPECT_FALSE(fileExists(file("a.xml")));
}

TEST_F(ReportCommandTest, TellsAPersonOfARequestThatNobodyKnows) {
  const FakeServerScript script(
      joined({{"expect tools/call", textResult("error:unknown_request_id\n\nNo result for "
                                               "requestId 0a1b2c3d-0000-4000-8000-00000000abcd.",
                                               true)}}));
  const auto run = runWithFakeServer(
      {"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--junit", file("a.xml")});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors,
            "corvanectl: nobody knows the request 0a1b2c3d-0000-4000-8000-00000000abcd: the id is "
            "wrong, or its result has been "
            "removed (results are kept for about 7 days)\n");
}

// Fails when the pictures of steps that passed are saved, or a report does not name those saved.
TEST_F(ReportCommandTest, SavesThePicturesThatItNames) {
  const FakeServerScript script(joined({finishedResult("failed", captured), withPictures(1)}));
  const auto run = runWithFakeServer({"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--junit",
                                      file("a.xml"), "--pictures", file("shots")});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  const std::string before = file("shots/Pay-step-1-before.jpg");
  EXPECT_EQ(readFile(before), "foo");
  EXPECT_EQ(readFile(file("shots/Pay-step-1-after.jpg")), "bar");
  const std::string xml = readFile(file("a.xml"));
  EXPECT_NE(xml.find("Pictures:\n" + before + "\n"), std::string::npos) << xml;
  EXPECT_NE(xml.find("[[ATTACHMENT|" + before + "]]\n"), std::string::npos) << xml;
}

TEST_F(ReportCommandTest, NeedsAFileToWrite) {
  const auto run = runWithFakeServer({"report", "0a1b2c3d-0000-4000-8000-00000000abcd"});
  EXPECT_EQ(run.status, 64);
  EXPECT_TRUE(run.errors.starts_with(
      "corvanectl: At least one of --junit, --html, --markdown and --events is required\n"))
      << run.errors;
}

// Fails when the request is looked at before it is known that there is a place for the reports.
TEST_F(ReportCommandTest, ChecksTheFilesFirst) {
  const auto run = runCorvanectl({"--server", "/nowhere", "report",
                                  "0a1b2c3d-0000-4000-8000-00000000abcd", "--html", "/dev/null"});
  EXPECT_EQ(run.status, 64);
  EXPECT_EQ(run.errors,
            "corvanectl: --html: expected the name of a file of its own, not '/dev/null', which is "
            "a device or a pipe\n");
}

// Fails when a page that is not whole is put in the place of an older one, or left beside it.
TEST_F(ReportCommandTest, LeavesNoHalfPage) {
  writeFileWhole(file("b.html"), "older");
  const FakeServerScript script(
      joined({finishedResult("failed", captured), withPictures(0), {"exit 3"}}));
  EXPECT_EQ(runWithFakeServer(
                {"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--html", file("b.html")})
                .status,
            2);
  EXPECT_EQ(readFile(file("b.html")), "older");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.path()), {}), 1);
}

TEST_F(ReportCommandTest, ShowsAtATerminalHowFarThePageIs) {
  const FakeServerScript script(
      joined({finishedResult("failed", captured), withPictures(0), {"expect tools/call", "hang"}}));
  Pseudoterminal terminal(200);
  const int program =
      terminal.start({"--server", FakeServerScript::program(), "report",
                      "0a1b2c3d-0000-4000-8000-00000000abcd", "--html", file("b.html")});
  const std::string shown = terminal.readUntil("b.html: 1 of 3 steps");
  EXPECT_NE(shown.find("b.html: 0 of 3 steps"), std::string::npos) << shown;
  terminal.type("\x03");
  EXPECT_EQ(waitForStatus(program), 128 + SIGINT);
  EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

/// The commands of a run that is dispatched, followed and found to have finished.
std::vector<std::string> followedRun(std::string_view status) {
  const std::string dispatched = textResult(
      "Run request dispatched to Corvane.\n\n  requestId:   "
      "11111111-2222-3333-4444-555555555555");
  return joined({{"expect tools/call", dispatched},
                 finishedResult(status, resultText("\"status\":\"" + std::string(status) + "\""))});
}

TEST_F(ReportCommandTest, FollowingWritesReportsToo) {
  const FakeServerScript script(followedRun("passed"));
  const auto run = runWithFakeServer({"run", "Shop", "--all", "--follow", "--junit", file("a.xml"),
                                      "--html", file("b.html"), "--markdown", file("c.md")});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_NE(readFile(file("a.xml")).find("Request 11111111-2222-3333-4444-555555555555"),
            std::string::npos);
  EXPECT_TRUE(readFile(file("c.md")).starts_with("## ✅ run\\_test: passed\n"));
  EXPECT_TRUE(readFile(file("b.html")).ends_with("</html>\n"));
}

// Fails when a run is dispatched although there is no place for what is wanted of it.
TEST_F(ReportCommandTest, FollowingChecksTheFilesBeforeItDispatches) {
  const auto run = runCorvanectl(
      {"--server", "/nowhere", "run", "Shop", "--all", "--follow", "--html", directory.path()});
  EXPECT_EQ(run.status, 74);
  EXPECT_EQ(run.errors, "corvanectl: could not write --html " + directory.path().string() +
                            ": Is a directory\n");
}

// Fails when a report that could not be written hides how the run went, or goes unnoticed.
TEST_F(ReportCommandTest, HowTheRunWentIsWorthMoreThanAReport) {
  for (const auto& [status, expected] : {std::pair("failed", 1), std::pair("passed", 74)}) {
    const auto folder = directory.path() / status;
    auto script = followedRun(status);
    // While the run is under way, a folder comes to lie in the report's place.
    script.insert(script.end() - 2, "makeFolder " + (folder / "a.xml").string());
    const FakeServerScript fake(script);
    const auto run = runWithFakeServer({"run", "Shop", "--all", "--follow", "--junit",
                                        folder / "a.xml", "--markdown", folder / "c.md"});
    EXPECT_EQ(run.status, expected);
    EXPECT_EQ(run.errors,
              "corvanectl: could not write " + (folder / "a.xml").string() + ": Is a directory\n");
    // The other report is there all the same.
    EXPECT_TRUE(fileExists(folder / "c.md"));
  }
}

// Fails when somebody could take the report of an earlier run for this one's.
TEST_F(ReportCommandTest, FollowingLeavesNoOlderReport) {
  writeFileWhole(file("a.xml"), "older");
  const FakeServerScript script(
      joined({{"expect tools/call",
               textResult("status: running (NOT terminal — run still in progress, "
                          "call get_result again)\nappRunning: true\n\n{}"),
               "exit 3"}}));
  EXPECT_EQ(runWithFakeServer(
                {"follow", "0a1b2c3d-0000-4000-8000-00000000abcd", "--junit", file("a.xml")})
                .status,
            2);
  EXPECT_FALSE(fileExists(file("a.xml")));
}

TEST_F(ReportCommandTest, PrintsEvents) {
  const FakeServerScript script(joined({finishedResult(
      "failed",
      R"({"schemaVersion":3,"requestId":"r","source":"run_test","status":"failed","terminal":true,)"
      R"("updatedAt":"2026-01-31T12:00:00Z","tests":[{"testId":"1","testName":"Pay",)"
      R"("status":"failed","durationSeconds":3,"steps":[]}]})")}));
  const auto run =
      runWithFakeServer({"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--events"});
  EXPECT_EQ(run.status, 1) << run.errors;
  EXPECT_EQ(
      run.output,
      R"({"event":"following","requestId":"0a1b2c3d-0000-4000-8000-00000000abcd","seconds":0})"
      "\n"
      R"({"event":"testFinished","seconds":0,"test":{"durationSeconds":3,"status":"failed",)"
      R"("steps":[],"testId":"1","testName":"Pay"},"testIndex":0,"testName":"Pay"})"
      "\n"
      R"({"event":"finished","exitStatus":1,"result":{"requestId":"r","schemaVersion":3,)"
      R"("source":"run_test","status":"failed","terminal":true,"tests":[{"durationSeconds":3,)"
      R"("status":"failed","steps":[],"testId":"1","testName":"Pay"}],)"
      R"("updatedAt":"2026-01-31T12:00:00Z"},"seconds":0,"status":"failed"})"
      "\n");
}

class ReportFilesTest : public ReportCommandTest {};

// Fails when a link is replaced by the report, or a pipe.
TEST_F(ReportFilesTest, LeaveLinksAsTheyAre) {
  writeFileWhole(file("real.md"), "older");
  std::filesystem::create_symlink("real.md", file("link.md"));
  const FakeServerScript script(joined({finishedResult("passed", "{}")}));
  EXPECT_EQ(runWithFakeServer(
                {"report", "0a1b2c3d-0000-4000-8000-00000000abcd", "--markdown", file("link.md")})
                .status,
            0);
  EXPECT_TRUE(std::filesystem::is_symlink(file("link.md")));
  EXPECT_TRUE(readFile(file("real.md")).starts_with("## "));
  ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
  const ReportOptions pipe{.junit = file("pipe"), .html = {}, .markdown = {}};
  EXPECT_THROW(checkReports(pipe), UsageError);
}

// Fails when a report would replace the file that the program's own output goes into.
TEST_F(ReportFilesTest, RefuseTheFileThatTakesTheOutput) {
  const ReportOptions output{.junit = "/dev/stderr", .html = {}, .markdown = {}};
  const FileDescriptor kept(::dup(STDERR_FILENO));
  const FileDescriptor taking(::open(file("log").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  ::dup2(taking.get(), STDERR_FILENO);
  EXPECT_THROW(checkReports(output), UsageError);
  ::dup2(kept.get(), STDERR_FILENO);
}

TEST_F(ReportFilesTest, MakesTheFoldersThatTheyLack) {
  checkReports({.junit = file("new/a.xml"), .html = {}, .markdown = {}});
  EXPECT_TRUE(std::filesystem::is_empty(directory.path() / "new"));
}

TEST_F(ReportFilesTest, RefusesAFolderAndAFileForAFolder) {
  const ReportOptions folder{.junit = directory.path(), .html = {}, .markdown = {}};
  EXPECT_THROW(checkReports(folder), FileError);
  writeFileWhole(file("file"), "");
  const ReportOptions below{.junit = {}, .html = file("file/b.html"), .markdown = {}};
  EXPECT_THROW(checkReports(below), FileError);
}

TEST_F(ReportFilesTest, RefusesOneFileForTwoReports) {
  const ReportOptions same{.junit = {}, .html = file("a"), .markdown = file("./a")};
  EXPECT_THROW(checkReports(same), UsageError);
}

}  // namespace
}  // namespace corvane::testing
