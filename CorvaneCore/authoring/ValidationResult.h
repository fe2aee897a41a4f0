#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CorvaneCore/authoring/ValidationIssue.h"
#include "CorvaneCore/json/Record.h"

namespace corvane {

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
