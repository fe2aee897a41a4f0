#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>

#include "CorvaneCore/json/Record.h"
#include "corvane_standin/scenario/LimitedNumber.h"
#include "corvane_standin/scenario/SuggestedWord.h"

namespace corvane::standin {

/// The final result is there, but cut in its middle.
struct TornResult {
  /// How long it stays so; for good when absent.
  std::optional<Seconds> wholeAfterSeconds;

  static constexpr auto fields() {
    return FieldList(field("wholeAfterSeconds", &TornResult::wholeAfterSeconds));
  }
};

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
    /// The program stops doing anything, for this request and every other, until it is ended.
    hang,
    /// The run stays at the test's first step, refreshed, until it is cancelled.
    hold,
    /// The program ends on the spot and leaves the run unfinished.
    crash,
  };

  Kind kind = Kind::passed;
  /// In how many runs it turns out so; it passes after those. Always when absent.
  std::optional<Times> times;
  /// The step at which the outcome shows; the middle one when absent.
  std::optional<StepNumber> failedStep;
  /// Told with a failed, warning or healed step, or with a failed build.
  std::optional<std::string> failureReason;
  std::optional<std::string> blockedCode;
  std::optional<std::string> blockedMessage;
  /// How long a step of this test takes.
  std::optional<Seconds> stepSeconds;
  /// How long a run that has this test in it stays in the drop folder.
  std::optional<Seconds> pickUpSeconds;
  /// Tears the result of a run that has this test in it.
  std::optional<TornResult> tornResult;

  static constexpr auto fields() {
    using R = TestOutcome;
    return FieldList(
        field("outcome", &R::kind), field("times", &R::times), field("failedStep", &R::failedStep),
        field("failureReason", &R::failureReason), field("blockedCode", &R::blockedCode),
        field("blockedMessage", &R::blockedMessage), field("stepSeconds", &R::stepSeconds),
        field("pickUpSeconds", &R::pickUpSeconds), field("tornResult", &R::tornResult));
  }
};

/// How an import, an exploration or a library request is to turn out.
struct RequestOutcome {
  enum class Kind {
    /// It is worked on like any other.
    fulfilled,
    /// An import is rejected, another request ends as an error.
    failed,
    blocked,
    // These are as for tests.
    wedged,
    hang,
    hold,
    crash,
  };

  Kind kind = Kind::fulfilled;
  /// How many requests turn out so; those after them are fulfilled. All of them when absent.
  std::optional<Times> times;
  std::optional<std::string> failureReason;
  std::optional<std::string> blockedCode;
  std::optional<std::string> blockedMessage;
  /// How long the request stays in the drop folder.
  std::optional<Seconds> pickUpSeconds;
  std::optional<TornResult> tornResult;

  static constexpr auto fields() {
    using R = RequestOutcome;
    return FieldList(
        field("outcome", &R::kind), field("times", &R::times),
        field("failureReason", &R::failureReason), field("blockedCode", &R::blockedCode),
        field("blockedMessage", &R::blockedMessage), field("pickUpSeconds", &R::pickUpSeconds),
        field("tornResult", &R::tornResult));
  }
};

/// Outcomes by the names of what they are for. "*" stands for all that are not named.
template <class Outcome>
using Outcomes = std::map<std::string, Outcome>;

/// Of library requests, by the tools that send them.
struct LibraryOutcomes {
  std::optional<RequestOutcome> extractUdi;
  std::optional<RequestOutcome> deleteUdi;
  std::optional<RequestOutcome> resetWorldMap;

  static constexpr auto fields() {
    using R = LibraryOutcomes;
    return FieldList(field("extract_udi", &R::extractUdi), field("delete_udi", &R::deleteUdi),
                     field("reset_world_map", &R::resetWorldMap));
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
      Row{Kind::wedged, "wedged"},   Row{Kind::hang, "hang"},
      Row{Kind::hold, "hold"},       Row{Kind::crash, "crash"},
  };
};
template <>
struct corvane::Codec<corvane::standin::TestOutcome::Kind>
    : standin::SuggestedWord<standin::TestOutcome::Kind> {};

template <>
struct corvane::Vocabulary<corvane::standin::RequestOutcome::Kind> {
  using Kind = standin::RequestOutcome::Kind;
  using Row = VocabularyRow<Kind>;
  static constexpr std::array rows{
      Row{Kind::fulfilled, "fulfilled"}, Row{Kind::failed, "failed"}, Row{Kind::blocked, "blocked"},
      Row{Kind::wedged, "wedged"},       Row{Kind::hang, "hang"},     Row{Kind::hold, "hold"},
      Row{Kind::crash, "crash"},
  };
};
template <>
struct corvane::Codec<corvane::standin::RequestOutcome::Kind>
    : standin::SuggestedWord<standin::RequestOutcome::Kind> {};
