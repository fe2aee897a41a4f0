#include "corvanectl/report/JUnitReport.h"

#include <gtest/gtest.h>

#include "ReportFixture.h"

namespace corvane::testing {
namespace {

using namespace ctl;

/// The part of a report from `begin` to the end of `end`.
std::string part(const std::string& xml, std::string_view begin, std::string_view end) {
  const std::size_t from = xml.find(begin);
  const std::size_t to = xml.find(end, from);
  if (to == std::string::npos) return "no such part in\n" + xml;
  return xml.substr(from, to + end.size() - from);
}

TEST(JUnitReport, HasACaseForEachTest) {
  EXPECT_EQ(junitReport(failedRun(), {}), R"(<?xml version="1.0" encoding="UTF-8"?>
<testsuites name="Corvane" tests="2" failures="1" errors="0" time="15.340">
  <testsuite name="Shop" tests="2" failures="1" errors="0" skipped="0" time="15.340" timestamp="2026-01-31T12:00:00">
    <properties>
      <property name="Request" value="r1" />
      <property name="Status" value="failed" />
      <property name="Platform" value="iOS" />
      <property name="App under test" value="com.shop 1.2 build 45" />
      <property name="Credits" value="1.5 spent, 20 left" />
      <property name="Kind of request" value="run_test" />
      <property name="Remark" value="One failed" />
    </properties>
    <testcase name="Login" classname="Shop" time="12.340">
      <system-out>step 0 healed: TAP: Tap OK (2 s)
</system-out>
    </testcase>
    <testcase name="Pay" classname="Shop" time="3.000">
      <failure message="step 1 failed: TAP: Tap Pay — No button" type="failed">step 0 passed: TAP: Tap Cart (1.5 s)
step 1 failed: TAP: Tap Pay
No button
step 2 skipped: WAIT

Pictures:
/captures/2
</failure>
    </testcase>
  </testsuite>
</testsuites>
)");
}

TEST(JUnitReport, NamesAndAttachesTheFilesOfPictures) {
  const std::string xml =
      junitReport(failedRun(), {{{1, 1}, {"shots/before.jpg", "shots/after.jpg"}}});
  EXPECT_EQ(part(xml, "Pictures:", "</testcase>"), R"(Pictures:
shots/before.jpg
shots/after.jpg
</failure>
      <system-out>[[ATTACHMENT|shots/before.jpg]]
[[ATTACHMENT|shots/after.jpg]]
</system-out>
    </testcase>)");
}

/// The numbers and the cases of a report without anything that is the same in all.
std::string casesOf(std::string_view status, const std::string& members) {
  const std::string xml = junitReport(reportOf(status, members), {});
  return part(xml.substr(xml.find("<testsuite ")), " tests=", " time") + "\n" +
         part(xml, "<testcase", "</testsuite>");
}

// Fails when a build server shows all well although the request did not go well.
TEST(JUnitReport, TellsWhatNoTestTells) {
  EXPECT_EQ(casesOf("buildFailed", R"("projectName":"Shop","message":"cannot find x")"),
            R"( tests="1" failures="1" errors="0" skipped="0" time
<testcase name="Request r1" classname="Shop" time="0.000">
      <failure message="cannot find x" type="buildFailed">cannot find x
</failure>
    </testcase>
  </testsuite>)");
  EXPECT_EQ(casesOf("blocked", R"("blocked":{"code":"c","message":"m","url":"https://x"},
"tests":[{"testId":"1","testName":"A","status":"passed","durationSeconds":1,"steps":[]}])"),
            R"( tests="2" failures="0" errors="1" skipped="0" time
<testcase name="A" classname="run_test" time="1.000" />
    <testcase name="Request r1" classname="run_test" time="0.000">
      <error message="c: m" type="blocked">c: m
https://x
</error>
    </testcase>
  </testsuite>)");
  EXPECT_EQ(casesOf("cancelled", R"("projectName":"Shop")"),
            R"( tests="1" failures="0" errors="1" skipped="0" time
<testcase name="Request r1" classname="Shop" time="0.000">
      <error message="cancelled" type="cancelled"></error>
    </testcase>
  </testsuite>)");
}

TEST(JUnitReport, HasACaseForARequestWithoutTests) {
  EXPECT_EQ(casesOf("imported", R"("message":"Imported")"),
            R"( tests="1" failures="0" errors="0" skipped="0" time
<testcase name="Request r1" classname="run_test" time="0.000">
      <system-out>Imported
</system-out>
    </testcase>
  </testsuite>)");
}

TEST(JUnitReport, TellsSkippedAndDoubtfulTestsApart) {
  EXPECT_EQ(casesOf("warning", R"("tests":[
{"testId":"1","testName":"A","status":"skipped","durationSeconds":0,"steps":[]},
{"testId":"2","testName":"B","status":"warning","durationSeconds":0,"steps":[]}])"),
            R"( tests="2" failures="0" errors="1" skipped="1" time
<testcase name="A" classname="run_test" time="0.000">
      <skipped />
    </testcase>
    <testcase name="B" classname="run_test" time="0.000">
      <error message="warning" type="warning"></error>
    </testcase>
  </testsuite>)");
}

// Fails when a step that healing saved is told as the reason.
TEST(JUnitReport, TellsTheStepThatFailed) {
  Report report = failedRun();
  report.tests[1].steps[0].healedByAI = true;
  EXPECT_NE(junitReport(report, {}).find("message=\"step 1 failed: TAP: Tap Pay — No button\""),
            std::string::npos);
}

// Fails when a character that XML does not allow is written: no reader takes any of the file then.
TEST(JUnitReport, WritesOnlyWhatXmlAllows) {
  Report report;
  report.status = "failed";
  report.outcome = Outcome::failed;
  report.title = "a\u0001b\uFFFEc\uFFFFd\xFFz";
  report.remarks = {"<b &\"one\"\r\n\ttwo\u001B[2J"};
  const std::string xml = junitReport(report, {});
  EXPECT_EQ(part(xml, "<testsuite name", " tests"),
            "<testsuite name=\"a\\u0001b\uFFFDc\uFFFDd\uFFFDz\" tests");
  EXPECT_EQ(part(xml, "<failure", "</failure>"),
            "<failure message=\"&lt;b &amp;&quot;one&quot; two\\u001b[2J\" type=\"failed\">"
            "&lt;b &amp;\"one\"\n two\\u001b[2J\n</failure>");
}

TEST(JUnitReport, TellsNoAbsurdTimes) {
  EXPECT_EQ(casesOf("passed", R"("tests":[
{"testId":"1","testName":"A","status":"passed","durationSeconds":-3,"steps":[]},
{"testId":"2","testName":"B","status":"passed","durationSeconds":1e300,"steps":[]}])"),
            R"( tests="2" failures="0" errors="0" skipped="0" time
<testcase name="A" classname="run_test" time="0.000" />
    <testcase name="B" classname="run_test" time="1000000000.000" />
  </testsuite>)");
}

}  // namespace
}  // namespace corvane::testing
