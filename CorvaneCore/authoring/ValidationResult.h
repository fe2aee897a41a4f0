#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CorvaneCore/json/Record.h"

namespace corvane {

/// One problem of a test payload, in a form that an agent can act on.
struct ValidationIssue {
  enum class Severity { error, warning };
  enum class Code {
    missingRequiredField,
    unknownParameter,
    invalidParameterType,
    invalidEnumValue,
    missingFirstInteraction,
    missingSecondInteraction,
    missingLastInteraction,
    emptyInteractionsArray,
    missingQuotedUiText,
    wrongAppNamePlaceholder,
    platformFieldMismatch,
    unknownInteractionType,
    missingTests,
    duplicateTestIndex,
    emptyInputText,
    invalidBackspaceCount,
    androidOnlyCommand,
    invalidConditionalStructure,
    compositionOnly,
  };

  Severity severity = Severity::error;
  Code code = Code::missingRequiredField;
  /// Where in the create_test arguments the problem lies, e.g. "tests[0].interactions[1].type".
  std::string path;
  std::string message;
  /// A value that would be accepted in that place.
  std::optional<AnyCodable> suggestion;

  static constexpr auto fields() {
    using R = ValidationIssue;
    return FieldList(field("severity", &R::severity), field("code", &R::code),
                     field("path", &R::path), field("message", &R::message),
                     field("suggestion", &R::suggestion));
  }
};

template <>
struct Vocabulary<ValidationIssue::Severity> {
  using Severity = ValidationIssue::Severity;
  static constexpr std::array rows{
      VocabularyRow<Severity>{Severity::error, "error"},
      VocabularyRow<Severity>{Severity::warning, "warning"},
  };
};

template <>
struct Vocabulary<ValidationIssue::Code> {
  using Code = ValidationIssue::Code;
  using Row = VocabularyRow<Code>;
  static constexpr std::array rows{
      Row{Code::missingRequiredField, "missingRequiredField"},
      Row{Code::unknownParameter, "unknownParameter"},
      Row{Code::invalidParameterType, "invalidParameterType"},
      Row{Code::invalidEnumValue, "invalidEnumValue"},
      Row{Code::missingFirstInteraction, "missingFirstInteraction"},
      Row{Code::missingSecondInteraction, "missingSecondInteraction"},
      Row{Code::missingLastInteraction, "missingLastInteraction"},
      Row{Code::emptyInteractionsArray, "emptyInteractionsArray"},
      Row{Code::missingQuotedUiText, "missingQuotedUiText"},
      Row{Code::wrongAppNamePlaceholder, "wrongAppNamePlaceholder"},
      Row{Code::platformFieldMismatch, "platformFieldMismatch"},
      Row{Code::unknownInteractionType, "unknownInteractionType"},
      Row{Code::missingTests, "missingTests"},
      Row{Code::duplicateTestIndex, "duplicateTestIndex"},
      Row{Code::emptyInputText, "emptyInputText"},
      Row{Code::invalidBackspaceCount, "invalidBackspaceCount"},
      Row{Code::androidOnlyCommand, "androidOnlyCommand"},
      Row{Code::invalidConditionalStructure, "invalidConditionalStructure"},
      Row{Code::compositionOnly, "compositionOnly"},
  };
};

extern template struct RecordCodec<ValidationIssue>;

/// Every problem of a test payload, in the order found. Warnings alone do not keep a payload from
/// being imported.
struct ValidationResult {
  std::vector<ValidationIssue> issues;

  [[nodiscard]] std::vector<ValidationIssue> errors() const {
    std::vector<ValidationIssue> found;
    std::copy_if(issues.begin(), issues.end(), std::back_inserter(found), isError);
    return found;
  }
  [[nodiscard]] bool hasErrors() const {
    return std::any_of(issues.begin(), issues.end(), isError);
  }

  void addError(ValidationIssue::Code code, std::string path, std::string message,
                std::optional<AnyCodable> suggestion = std::nullopt) {
    issues.push_back({ValidationIssue::Severity::error, code, std::move(path), std::move(message),
                      std::move(suggestion)});
  }
  void addWarning(ValidationIssue::Code code, std::string path, std::string message,
                  std::optional<AnyCodable> suggestion = std::nullopt) {
    issues.push_back({ValidationIssue::Severity::warning, code, std::move(path), std::move(message),
                      std::move(suggestion)});
  }

  static constexpr auto fields() { return FieldList(field("issues", &ValidationResult::issues)); }

 private:
  static bool isError(const ValidationIssue& issue) {
    return issue.severity == ValidationIssue::Severity::error;
  }
};

}  // namespace corvane
