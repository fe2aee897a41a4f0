#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "CorvaneCore/json/Record.h"

namespace corvane::standin {

/// How a test is to turn out when it is run.
struct TestOutcome {
  enum class Kind {
    passed,
    failed,
    /// One step passes only after adapting to an unexpected screen; the test passes.
    healed,
    /// The run ends as blocked when it reaches the test.
    blocked,
    warning,
    /// The build before the run fails; without a build the test passes.
    buildFailed,
    /// The run stops advancing and is no longer refreshed, though the program lives on.
    wedged,
    /// The run stays at the test's first step, refreshed, until it is cancelled.
    hold,
    /// The program ends on the spot and leaves the run unfinished.
    crash,
  };

  Kind kind = Kind::passed;
  /// The 0-based step at which the outcome shows; the middle one when absent.
  std::optional<std::int64_t> failedStep;
  /// Told with a failed, warning or healed step, or with a failed build.
  std::optional<std::string> failureReason;
  std::optional<std::string> blockedCode;
  std::optional<std::string> blockedMessage;

  static constexpr auto fields() {
    using R = TestOutcome;
    return FieldList(field("outcome", &R::kind), field("failedStep", &R::failedStep),
                     field("failureReason", &R::failureReason),
                     field("blockedCode", &R::blockedCode),
                     field("blockedMessage", &R::blockedMessage));
  }
};

}  // namespace corvane::standin

template <>
struct corvane::Vocabulary<corvane::standin::TestOutcome::Kind> {
  using Kind = standin::TestOutcome::Kind;
  using Row = VocabularyRow<Kind>;
  static constexpr std::array rows{
      Row{Kind::passed, "passed"},   Row{Kind::failed, "failed"},
      Row{Kind::healed, "healed"},   Row{Kind::blocked, "blocked"},
      Row{Kind::warning, "warning"}, Row{Kind::buildFailed, "buildFailed"},
      Row{Kind::wedged, "wedged"},   Row{Kind::hold, "hold"},
      Row{Kind::crash, "crash"},
  };
};
