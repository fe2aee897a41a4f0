#include "bench/speed/Messages.h"
#include "bench/speed/RoundTrips.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

constexpr std::size_t callsPerRound = 3000;

void addRound(RoundTrips& trips, const Contender::Command& command) {
  Contender contender(command);
  contender.initialize();
  trips.addRound(
      contender, callsPerRound, [](std::size_t id) { return Messages::call(id, "health", "{}"); },
      "healthy");
}

}  // namespace

Rows::Findings Rows::healthCall(const Setting& setting) {
  const TemporaryHome home;
  RoundTrips server;
  RoundTrips sdk;
  for (int i = 0; i < setting.rounds; ++i) {
    addRound(server, setting.serverIn(home.path()));
    addRound(sdk, setting.sdkServer());
  }
  Finding finding = timesBetter("`health` call round trip, median, against the SDK server's tool",
                                2, sdk.median() / server.median());
  finding.ours = server.text();
  finding.others = sdk.text();
  return {finding};
}

}  // namespace corvane::testing
