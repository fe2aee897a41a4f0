#include "CorvaneCore/authoring/rules/PlatformRules.h"

#include "CorvaneCore/authoring/AuthoringTerms.h"

namespace corvane {

namespace {

using Code = ValidationIssue::Code;

bool isEmpty(const std::optional<std::string>& field) {
  return !field || field->empty();
}

bool builds(const AgentTestSchema& payload) {
  return payload.buildFirst.value_or(true);
}

void checkIosFields(const AgentTestSchema& payload, ValidationResult& result) {
  if (isEmpty(payload.iosProjectPath) && builds(payload)) {
    result.addError(Code::missingRequiredField, "iosProjectPath",
                    std::string("iOS targets require 'iosProjectPath' when Corvane builds. To run "
                                "a binary already installed on the simulator — your own build, or "
                                "a preinstalled system app like ") +
                        AuthoringTerms::systemMapsIdentifier +
                        " — pass buildFirst:false and omit the path.");
  }
  if (isEmpty(payload.bundleIdentifier)) {
    result.addError(Code::missingRequiredField, "bundleIdentifier",
                    std::string("iOS targets require 'bundleIdentifier' (e.g. ") +
                        AuthoringTerms::exampleIdentifier + ").");
  }
  if (payload.androidProjectPath || payload.applicationId) {
    result.addWarning(Code::platformFieldMismatch, "androidProjectPath",
                      "Android fields are ignored when targetPlatform is iOS.");
  }
}

/// iOS fields on an Android payload draw no warning, unlike the other way round.
void checkAndroidFields(const AgentTestSchema& payload, ValidationResult& result) {
  if (isEmpty(payload.androidProjectPath) && builds(payload)) {
    result.addError(Code::missingRequiredField, "androidProjectPath",
                    "Android targets require 'androidProjectPath' when Corvane builds. To run an "
                    "APK already installed on the emulator — your own build, or a preinstalled app "
                    "— pass buildFirst:false and omit the path.");
  }
  if (isEmpty(payload.applicationId)) {
    result.addError(Code::missingRequiredField, "applicationId",
                    std::string("Android targets require 'applicationId' (e.g. ") +
                        AuthoringTerms::exampleIdentifier + ").");
  }
}

}  // namespace

AgentTargetPlatform platformOf(const AgentTestSchema& payload) {
  return payload.targetPlatform == rawValue(AgentTargetPlatform::android)
             ? AgentTargetPlatform::android
             : AgentTargetPlatform::iOS;
}

void checkPlatformFields(const AgentTestSchema& payload, AgentTargetPlatform platform,
                         ValidationResult& result) {
  if (platform == AgentTargetPlatform::android) {
    checkAndroidFields(payload, result);
  } else {
    checkIosFields(payload, result);
  }
}

}  // namespace corvane
