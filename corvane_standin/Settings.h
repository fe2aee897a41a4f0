#pragma once

#include <array>
#include <optional>
#include <string>

#include "CorvaneCore/json/Record.h"
#include "corvane_standin/scenario/Outcomes.h"

namespace corvane::standin {

/// Where the ids of what the stand-in brings into being come from.
enum class IdSource {
  random,
  /// From the name of the thing, the same each time.
  byName,
};

}  // namespace corvane::standin

template <>
struct corvane::Vocabulary<corvane::standin::IdSource> {
  using Source = standin::IdSource;
  static constexpr std::array rows{
      VocabularyRow<Source>{Source::random, "random"},
      VocabularyRow<Source>{Source::byName, "byName"},
  };
};
template <>
struct corvane::Codec<corvane::standin::IdSource> : standin::SuggestedWord<standin::IdSource> {};

namespace corvane::standin {

/// How fast the stand-in works, what it begins with and how requests turn out: what settings.json
/// and every other scenario file holds. Every value may be left out of the file.
struct StandInSettings {
  /// Where editors find the JSON Schema of the file.
  std::optional<std::string> schema;
  Seconds stepSeconds = 0.4;
  Seconds buildSeconds = 1.5;
  /// The longest a waiting or running request goes without its result file being refreshed.
  Seconds heartbeatSeconds = 15;
  /// From the start of the program to the moment it takes up requests.
  Seconds coldStartSeconds = 0.5;
  /// How long a request stays in its drop folder before it is picked up.
  Seconds pickUpSeconds = 0;
  double creditsPerExploredStep = 15;
  /// The credits there are at the start.
  double creditBalance = 500;
  /// Whether runs leave capture sessions.
  bool captures = true;
  /// The date that everything is dated with, when time is to stand still.
  std::optional<Date> clock;
  IdSource ids = IdSource::random;
  /// A file like context.json with the workspace that a home without one begins with; beside the
  /// file that names it, unless its path is absolute.
  std::optional<std::string> workspace;
  /// By test name.
  Outcomes<TestOutcome> outcomes;
  /// By the name of a test in the payload.
  Outcomes<RequestOutcome> imports;
  /// By project name.
  Outcomes<RequestOutcome> explorations;
  LibraryOutcomes libraryRequests;

  static constexpr auto fields() {
    using R = StandInSettings;
    return FieldList(
        field("$schema", &R::schema), field("stepSeconds", &R::stepSeconds).withDefault(),
        field("buildSeconds", &R::buildSeconds).withDefault(),
        field("heartbeatSeconds", &R::heartbeatSeconds).withDefault(),
        field("coldStartSeconds", &R::coldStartSeconds).withDefault(),
        field("pickUpSeconds", &R::pickUpSeconds).withDefault(),
        field("creditsPerExploredStep", &R::creditsPerExploredStep).withDefault(),
        field("creditBalance", &R::creditBalance).withDefault(),
        field("captures", &R::captures).withDefault(), field("clock", &R::clock),
        field("ids", &R::ids).withDefault(), field("workspace", &R::workspace),
        field("outcomes", &R::outcomes).withDefault(), field("imports", &R::imports).withDefault(),
        field("explorations", &R::explorations).withDefault(),
        field("libraryRequests", &R::libraryRequests).withDefault());
  }

  /// The first time that cannot be worked with, as text for people: the command line can set some.
  [[nodiscard]] std::optional<std::string> problem() const;
};

}  // namespace corvane::standin
