#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

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

namespace corvane::standin {

/// How fast the stand-in works and how tests turn out. Every value may be left out of the file.
struct StandInSettings {
  double stepSeconds = 0.4;
  double buildSeconds = 1.5;
  /// The longest a waiting or running request goes without its result file being refreshed.
  double heartbeatSeconds = 15;
  /// From the start of the program to the moment it takes up requests.
  double coldStartSeconds = 0.5;
  double creditsPerExploredStep = 15;
  /// The credits there are at the start.
  double creditBalance = 500;
  /// Whether runs leave capture sessions.
  bool captures = true;
  /// By test name.
  std::map<std::string, TestOutcome> outcomes;

  static constexpr auto fields() {
    using R = StandInSettings;
    return FieldList(field("stepSeconds", &R::stepSeconds).withDefault(),
                     field("buildSeconds", &R::buildSeconds).withDefault(),
                     field("heartbeatSeconds", &R::heartbeatSeconds).withDefault(),
                     field("coldStartSeconds", &R::coldStartSeconds).withDefault(),
                     field("creditsPerExploredStep", &R::creditsPerExploredStep).withDefault(),
                     field("creditBalance", &R::creditBalance).withDefault(),
                     field("captures", &R::captures).withDefault(),
                     field("outcomes", &R::outcomes).withDefault());
  }

  /// The first value that cannot be worked with, as text for people.
  [[nodiscard]] std::optional<std::string> problem() const;

  /// The settings in `file`; the defaults when there is none. What cannot be used is told, with its
  /// place, in `problems`; a setting or the outcome of a test then keeps its default.
  [[nodiscard]] static StandInSettings load(const std::filesystem::path& file,
                                            std::vector<std::string>& problems);
};

}  // namespace corvane::standin
