#include "CorvaneCore/authoring/ValidationResult.h"

#include <gtest/gtest.h>

#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

using Code = ValidationIssue::Code;
using Severity = ValidationIssue::Severity;

constexpr const char* fullText =
    R"({"code":"missingFirstInteraction","message":"Test 'A' must start …","path":"tests[0]",)"
    R"("severity":"error","suggestion":{"description":"","parameters":{"n":[1,0.5,true,null]},)"
    R"("type":"builtIn"}})";

TEST(ValidationIssueTest, EveryMemberFollowsItsRule) {
  expectRecordRules<ValidationIssue>(fullText, {
                                                   {"code", "a string", Presence::required},
                                                   {"message", "a string", Presence::required},
                                                   {"path", "a string", Presence::required},
                                                   {"severity", "a string", Presence::required},
                                                   {"suggestion", "anything", Presence::optional},
                                               });
}

TEST(ValidationIssueTest, FieldsStandUnderTheirKeys) {
  ValidationIssue issue{.severity = Severity::warning,
                        .code = Code::invalidConditionalStructure,
                        .path = "tests[0].selfHealingMode",
                        .message = "say \"off\"",
                        .suggestion = "fullTest"};
  EXPECT_EQ(AgentWire::encode(issue),
            R"({"code":"invalidConditionalStructure","message":"say \"off\"",)"
            R"("path":"tests[0].selfHealingMode","severity":"warning","suggestion":"fullTest"})");
  issue.suggestion.reset();
  EXPECT_EQ(AgentWire::encode(issue),
            R"({"code":"invalidConditionalStructure","message":"say \"off\"",)"
            R"("path":"tests[0].selfHealingMode","severity":"warning"})");
}

TEST(ValidationIssueTest, SeveritiesStandInOrder) {
  EXPECT_EQ(joinedRawValues<Severity>(" "), "error warning");
  EXPECT_EQ(rawValue(Severity::error), "error");
  EXPECT_EQ(rawValue(Severity::warning), "warning");
  EXPECT_EQ(fromRawValue<Severity>("info"), std::nullopt);
}

TEST(ValidationIssueTest, CodesStandInOrder) {
  const std::vector<const char*> expected{"missingRequiredField",
                                          "unknownParameter",
                                          "invalidParameterType",
                                          "invalidEnumValue",
                                          "missingFirstInteraction",
                                          "missingSecondInteraction",
                                          "missingLastInteraction",
                                          "emptyInteractionsArray",
                                          "missingQuotedUiText",
                                          "wrongAppNamePlaceholder",
                                          "platformFieldMismatch",
                                          "unknownInteractionType",
                                          "missingTests",
                                          "duplicateTestIndex",
                                          "emptyInputText",
                                          "invalidBackspaceCount",
                                          "androidOnlyCommand",
                                          "invalidConditionalStructure",
                                          "compositionOnly"};
  ASSERT_EQ(Vocabulary<Code>::rows.size(), 19U);
  ASSERT_EQ(expected.size(), 19U);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(rawValue(static_cast<Code>(i)), expected[i]);
    EXPECT_EQ(fromRawValue<Code>(expected[i]), static_cast<Code>(i));
  }
  EXPECT_EQ(fromRawValue<Code>("MissingTests"), std::nullopt);
  EXPECT_EQ(fromRawValue<Code>(""), std::nullopt);
}

TEST(ValidationIssueTest, UnknownCodesAndSeveritiesDoNotDecode) {
  const auto error = [](std::string_view code, std::string_view severity) {
    const AnyCodable issue(
        AnyCodable::Object{{"code", code}, {"message", ""}, {"path", ""}, {"severity", severity}});
    return errorText<DecodeError>([&] { (void)decodeValue<ValidationIssue>(issue); });
  };
  EXPECT_EQ(error("missingTests", "info"), "severity: expected one of error, warning");
  EXPECT_TRUE(
      error("newCode", "error").starts_with("code: expected one of missingRequiredField, "));
}

}  // namespace
}  // namespace corvane::testing
