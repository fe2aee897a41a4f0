#include <gtest/gtest.h>

#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

std::string stepText(const std::string& type, const std::string& parameters) {
  return R"({"type":")" + type +
         R"(","description":"","previousStepCondition":"previousFailed","parameters":)" +
         parameters + "}";
}

/// As a branch child, where every one of these types is welcome.
IssueLines issues(const std::string& type, const std::string& parameters) {
  return issuesOfChild(stepText(type, parameters));
}

const std::string strayTotal =
    "error unknownParameter C.parameters.totalSeconds: delay does not accept 'totalSeconds' (that "
    "belongs to waitToLoad). Use 'seconds'.";
const std::string noSeconds =
    "error missingRequiredField C.parameters.seconds: delay requires parameters.seconds (a "
    "non-negative number, e.g. 1.5).";
const std::string straySeconds =
    "error unknownParameter C.parameters.seconds: waitToLoad does not accept 'seconds' (that "
    "belongs to delay). Use 'totalSeconds'.";
const std::string noTotal =
    "error missingRequiredField C.parameters.totalSeconds: waitToLoad requires "
    "parameters.totalSeconds (max seconds to wait, e.g. 5).";

TEST(ParameterRulesTest, DelayTakesSeconds) {
  EXPECT_EQ(issues("delay", R"({"seconds":1.5})"), IssueLines());
  EXPECT_EQ(issues("delay", R"({"seconds":0})"), IssueLines());
  EXPECT_EQ(issues("delay", "{}"), IssueLines{noSeconds});
  EXPECT_EQ(issuesOfChild(
                R"({"type":"delay","description":"3","previousStepCondition":"previousFailed"})"),
            IssueLines{noSeconds});
}

TEST(ParameterRulesTest, SecondsThatAreNoNumberAreMissing) {
  for (const char* seconds : {R"("1.5")", "true", "null", "[1]", "{}"}) {
    EXPECT_EQ(issues("delay", R"({"seconds":)" + std::string(seconds) + "}"),
              IssueLines{noSeconds});
    EXPECT_EQ(issues("waitToLoad", R"({"totalSeconds":)" + std::string(seconds) + "}"),
              IssueLines{noTotal});
  }
}

TEST(ParameterRulesTest, SwappedKeysAreStrayAndLeaveTheRightOneMissing) {
  EXPECT_EQ(issues("delay", R"({"totalSeconds":5})"), (IssueLines{strayTotal, noSeconds}));
  EXPECT_EQ(issues("waitToLoad", R"({"seconds":5})"), (IssueLines{straySeconds, noTotal}));
}

TEST(ParameterRulesTest, AStrayKeyBesideTheRightOneIsReported) {
  EXPECT_EQ(issues("delay", R"({"seconds":1,"totalSeconds":5})"), IssueLines{strayTotal});
  EXPECT_EQ(issues("waitToLoad", R"({"seconds":1,"totalSeconds":5})"), IssueLines{straySeconds});
}

TEST(ParameterRulesTest, WaitToLoadTakesTotalSecondsWithoutALimit) {
  EXPECT_EQ(issues("waitToLoad", R"({"totalSeconds":5,"until":"Is it gone?"})"), IssueLines());
  EXPECT_EQ(issues("waitToLoad", R"({"totalSeconds":601})"), IssueLines());
  EXPECT_EQ(issues("waitToLoad", "{}"), IssueLines{noTotal});
}

TEST(ParameterRulesTest, AScrollDirectionIsOneOfFive) {
  for (const char* direction : {"auto", "up", "down", "left", "right"}) {
    EXPECT_EQ(issues("scroll", R"({"direction":")" + std::string(direction) + R"("})"),
              IssueLines());
  }
  for (const std::string direction : {"Up", "sideways", ""}) {
    EXPECT_EQ(issues("scroll", R"({"direction":")" + direction + R"("})"),
              IssueLines{"error invalidEnumValue C.parameters.direction: Unknown scroll direction "
                         "'" +
                         direction + "'. Valid: auto, up, down, left, right"});
  }
  EXPECT_EQ(issues("scroll", "{}"), IssueLines());
  EXPECT_EQ(issues("scroll", R"({"direction":7})"), IssueLines());
}

TEST(ParameterRulesTest, ADragNeedsAMode) {
  const IssueLines noMode{
      "error missingRequiredField C.parameters.mode: drag requires parameters.mode = 'auto' "
      "(AI-driven) or 'hardcoded' (explicit coords)."};
  for (const char* parameters :
       {"{}", R"({"what":"thumb"})", R"({"mode":"Auto"})", R"({"mode":""})", R"({"mode":1})"}) {
    EXPECT_EQ(issues("drag", parameters), noMode) << parameters;
  }
  EXPECT_EQ(
      issuesOfChild(R"({"type":"drag","description":"","previousStepCondition":"previousFailed"})"),
      noMode);
}

TEST(ParameterRulesTest, ADescribedDragSaysWhatOrWhere) {
  const IssueLines nothing{
      "error missingRequiredField C.parameters.what: drag(auto) requires at least 'what' (what to "
      "drag) and/or 'to' (where to drag it)."};
  for (const char* members : {"", R"(,"what":"")", R"(,"what":7)", R"(,"to":0.5)", R"(,"to":null)",
                              R"(,"to":true)", R"(,"from":"here")"}) {
    EXPECT_EQ(issues("drag", R"({"mode":"auto")" + std::string(members) + "}"), nothing) << members;
  }
  for (const char* members : {R"(,"what":"thumb")", R"(,"to":"the right end")",
                              R"(,"to":{"x":0,"y":1})", R"(,"what":"","to":"end")"}) {
    EXPECT_EQ(issues("drag", R"({"mode":"auto")" + std::string(members) + "}"), IssueLines())
        << members;
  }
}

const std::string noFromPoint =
    "error missingRequiredField C.parameters.from: drag(hardcoded) requires parameters.from = {x, "
    "y} with values in [0,1].";
const std::string noToPoint =
    "error missingRequiredField C.parameters.to: drag(hardcoded) requires parameters.to = {x, y} "
    "with values in [0,1].";

IssueLines issuesOfPoints(const std::string& from, const std::string& to) {
  return issues("drag", R"({"mode":"hardcoded","from":)" + from + R"(,"to":)" + to + "}");
}

TEST(ParameterRulesTest, AHardcodedDragNeedsTwoPoints) {
  const std::string point = R"({"x":0.5,"y":0.25})";
  EXPECT_EQ(issues("drag", R"({"mode":"hardcoded"})"), (IssueLines{noFromPoint, noToPoint}));
  EXPECT_EQ(issuesOfPoints(point, point), IssueLines());
  EXPECT_EQ(issuesOfPoints("null", point), IssueLines{noFromPoint});
  EXPECT_EQ(issuesOfPoints(point, R"("the end")"), IssueLines{noToPoint});
}

TEST(ParameterRulesTest, PointsLieOnTheScreen) {
  const std::string point = R"({"x":0.5,"y":0.25})";
  for (const char* good : {R"({"x":0,"y":1})", R"({"x":1.0,"y":0.0})", R"({"x":0,"y":0,"z":9})"}) {
    EXPECT_EQ(issuesOfPoints(good, good), IssueLines()) << good;
  }
  for (const char* bad :
       {"{}", R"({"x":0.5})", R"({"y":0.5})", R"({"x":-0.001,"y":0})", R"({"x":0,"y":1.001})",
        R"({"x":"0.5","y":0})", R"({"x":true,"y":0})", R"({"x":null,"y":0})", "[0.5,0.5]", "0.5"}) {
    EXPECT_EQ(issuesOfPoints(bad, point), IssueLines{noFromPoint}) << bad;
    EXPECT_EQ(issuesOfPoints(point, bad), IssueLines{noToPoint}) << bad;
  }
}

}  // namespace
}  // namespace corvane::testing
