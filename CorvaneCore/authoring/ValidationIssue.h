#pragma once

#include <array>
#include <optional>
#include <string>

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

}  // namespace corvane
