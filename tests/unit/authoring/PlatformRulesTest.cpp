#include <gtest/gtest.h>

#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

using Payloads::look;
using Payloads::open;
using Payloads::terminate;

const std::string iosPath =
    "error missingRequiredField iosProjectPath: iOS targets require 'iosProjectPath' when Corvane "
    "builds. To run a binary already installed on the simulator — your own build, or a "
    "preinstalled "
    "system app like com.apple.Maps — pass buildFirst:false and omit the path.";
const std::string iosIdentifier =
    "error missingRequiredField bundleIdentifier: iOS targets require 'bundleIdentifier' (e.g. "
    "com.example.myapp).";
const std::string androidFields =
    "warning platformFieldMismatch androidProjectPath: Android fields are ignored when "
    "targetPlatform is iOS.";
const std::string androidPath =
    "error missingRequiredField androidProjectPath: Android targets require 'androidProjectPath' "
    "when Corvane builds. To run an APK already installed on the emulator — your own build, or a "
    "preinstalled app — pass buildFirst:false and omit the path.";
const std::string androidIdentifier =
    "error missingRequiredField applicationId: Android targets require 'applicationId' (e.g. "
    "com.example.myapp).";

AgentTestSchema ios() {
  return Payloads::ios({Payloads::test({terminate, open, look, terminate})});
}

AgentTestSchema android() {
  return Payloads::android({Payloads::test({terminate, open, look, terminate})});
}

TEST(PlatformRulesTest, CompletePayloadsAreSound) {
  EXPECT_EQ(issuesOf(ios()), IssueLines());
  EXPECT_EQ(issuesOf(android()), IssueLines());
}

TEST(PlatformRulesTest, IosNeedsItsPathOnlyToBuild) {
  for (const std::optional<std::string>& path : {std::optional<std::string>(), {""}}) {
    for (const std::optional<bool> buildFirst : {std::optional<bool>(), {true}}) {
      AgentTestSchema payload = ios();
      payload.iosProjectPath = path;
      payload.buildFirst = buildFirst;
      EXPECT_EQ(issuesOf(payload), IssueLines{iosPath});
      payload.buildFirst = false;
      EXPECT_EQ(issuesOf(payload), IssueLines());
    }
  }
}

TEST(PlatformRulesTest, IosAlwaysNeedsItsIdentifier) {
  AgentTestSchema payload = ios();
  payload.bundleIdentifier.reset();
  EXPECT_EQ(issuesOf(payload), IssueLines{iosIdentifier});
  payload.bundleIdentifier = "";
  payload.buildFirst = false;
  EXPECT_EQ(issuesOf(payload), IssueLines{iosIdentifier});
}

TEST(PlatformRulesTest, AndroidFieldsDrawOneWarningOnIosEvenWhenEmpty) {
  AgentTestSchema payload = ios();
  payload.androidProjectPath = "";
  EXPECT_EQ(issuesOf(payload), IssueLines{androidFields});
  payload.applicationId = "com.example.shop";
  EXPECT_EQ(issuesOf(payload), IssueLines{androidFields});
  payload.androidProjectPath.reset();
  payload.applicationId = "";
  EXPECT_EQ(issuesOf(payload), IssueLines{androidFields});
}

TEST(PlatformRulesTest, AndroidNeedsItsPathOnlyToBuild) {
  for (const std::optional<std::string>& path : {std::optional<std::string>(), {""}}) {
    for (const std::optional<bool> buildFirst : {std::optional<bool>(), {true}}) {
      AgentTestSchema payload = android();
      payload.androidProjectPath = path;
      payload.buildFirst = buildFirst;
      EXPECT_EQ(issuesOf(payload), IssueLines{androidPath});
      payload.buildFirst = false;
      EXPECT_EQ(issuesOf(payload), IssueLines());
    }
  }
}

TEST(PlatformRulesTest, AndroidAlwaysNeedsItsIdentifier) {
  AgentTestSchema payload = android();
  payload.applicationId.reset();
  EXPECT_EQ(issuesOf(payload), IssueLines{androidIdentifier});
  payload.applicationId = "";
  payload.buildFirst = false;
  EXPECT_EQ(issuesOf(payload), IssueLines{androidIdentifier});
}

TEST(PlatformRulesTest, IosFieldsDrawNoWarningOnAndroid) {
  AgentTestSchema payload = android();
  payload.iosProjectPath = "/src/shop";
  payload.bundleIdentifier = "com.example.shop";
  EXPECT_EQ(issuesOf(payload), IssueLines());
}

TEST(PlatformRulesTest, OnlyExactlyAndroidIsAndroid) {
  for (const char* platform : {"iOS", "Android", "ANDROID", " android", "web", ""}) {
    AgentTestSchema payload = android();
    payload.targetPlatform = platform;
    EXPECT_EQ(issuesOf(payload), (IssueLines{iosPath, iosIdentifier, androidFields})) << platform;
  }
}

TEST(PlatformRulesTest, IssuesStandInTheOrderOfTheRules) {
  AgentTestSchema payload = android();
  payload.applicationId.reset();
  payload.androidProjectPath.reset();
  EXPECT_EQ(issuesOf(payload), (IssueLines{androidPath, androidIdentifier}));
}

}  // namespace
}  // namespace corvane::testing
