#include "bench/speed/Samples.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

/// A start takes little, so each round makes several.
constexpr int startsPerRound = 4;

double millisecondsToInitialize(const Contender::Command& command) {
  Contender contender(command);
  contender.initialize();
  return millisecondsSince(contender.startedAt());
}

}  // namespace

Rows::Findings Rows::coldStart(const Setting& setting) {
  const TemporaryHome home;
  Samples server;
  Samples floor;
  Samples sdk;
  for (int i = 0; i < setting.rounds * startsPerRound; ++i) {
    floor.add(millisecondsToInitialize(setting.floorProgram()));
    server.add(millisecondsToInitialize(setting.serverIn(home.path())));
    sdk.add(millisecondsToInitialize(setting.sdkServer()));
  }
  const double ours = server.median();
  Finding toSdk = timesBetter("cold start, against the SDK server", 80, sdk.median() / ours);
  Finding toFloor = timesAtMost("cold start, against the floor", 2, ours / floor.median());
  toSdk.ours = toFloor.ours = shortNumber(ours) + " ms";
  toSdk.others = shortNumber(sdk.median()) + " ms";
  toFloor.others = shortNumber(floor.median()) + " ms";
  return {toSdk, toFloor};
}

}  // namespace corvane::testing
