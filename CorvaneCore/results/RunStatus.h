#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// How far a dispatched request has come.
enum class RunStatus {
  received,
  queued,
  validating,
  importFailed,
  building,
  buildFailed,
  running,
  authoring,
  imported,
  authored,
  extracted,
  deleted,
  passed,
  failed,
  warning,
  cancelled,
  blocked,
  error,
};

template <>
struct Vocabulary<RunStatus> {
  struct Row {
    RunStatus value;
    std::string_view rawValue;
    bool terminal;
  };
  static constexpr std::array rows{
      Row{RunStatus::received, "received", false},
      Row{RunStatus::queued, "queued", false},
      Row{RunStatus::validating, "validating", false},
      Row{RunStatus::importFailed, "importFailed", true},
      Row{RunStatus::building, "building", false},
      Row{RunStatus::buildFailed, "buildFailed", true},
      Row{RunStatus::running, "running", false},
      Row{RunStatus::authoring, "authoring", false},
      Row{RunStatus::imported, "imported", true},
      Row{RunStatus::authored, "authored", true},
      Row{RunStatus::extracted, "extracted", true},
      Row{RunStatus::deleted, "deleted", true},
      Row{RunStatus::passed, "passed", true},
      Row{RunStatus::failed, "failed", true},
      Row{RunStatus::warning, "warning", true},
      Row{RunStatus::cancelled, "cancelled", true},
      Row{RunStatus::blocked, "blocked", true},
      Row{RunStatus::error, "error", true},
  };
};

/// Whether a request in this status is finished for good.
[[nodiscard]] constexpr bool isTerminal(RunStatus status) {
  return vocabularyRow(status).terminal;
}

}  // namespace corvane
