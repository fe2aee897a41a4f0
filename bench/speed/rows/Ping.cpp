#include "bench/speed/Messages.h"
#include "bench/speed/RoundTrips.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane {

namespace {

constexpr std::size_t pingsPerRound = 5000;

void addRound(RoundTrips& trips, const Contender::Command& command) {
  Contender contender(command);
  contender.initialize();
  trips.addRound(contender, pingsPerRound, Messages::ping, "\"result\":{}");
}

}  // namespace

Rows::Findings Rows::ping(const Setting& setting) {
  const TemporaryHome home;
  RoundTrips server;
  RoundTrips sdk;
  RoundTrips floor;
  RoundTrips loggingFloor;
  for (int i = 0; i < setting.rounds; ++i) {
    addRound(floor, setting.floorProgram());
    addRound(loggingFloor, setting.loggingFloor());
    addRound(server, setting.serverIn(home.path()));
    addRound(sdk, setting.sdkServer());
  }
  Finding median = timesBetter("ping round trip, median, against the SDK server", 4,
                               sdk.median() / server.median());
  Finding percentile = timesBetter("ping round trip, p99, against the SDK server", 50,
                                   sdk.percentile99() / server.percentile99());
  const double logLine = loggingFloor.median() - floor.median();
  Finding toFloor = timesAtMost("ping round trip, median less one log line, against the floor", 3,
                                (server.median() - logLine) / floor.median());
  median.ours = percentile.ours = toFloor.ours = server.text();
  median.others = percentile.others = sdk.text();
  toFloor.others = floor.text() + "; log line " + shortNumber(logLine) + " µs";
  return {median, percentile, toFloor};
}

}  // namespace corvane
