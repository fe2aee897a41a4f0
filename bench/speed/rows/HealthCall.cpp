#include "bench/speed/Cores.h"
#include "bench/speed/Messages.h"
#include "bench/speed/RoundTrips.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

constexpr std::size_t callsPerRound = 3000;

void addRound(RoundTrips& trips, const Contender::Command& command, std::string_view tool,
              std::string_view expected) {
  Contender contender(command);
  contender.initialize();
  trips.addRound(
      contender, callsPerRound, [tool](std::size_t id) { return Messages::call(id, tool, "{}"); },
      expected);
}

/// The simplest tools against the SDK server's only one.
Rows::Findings measure(const Setting& setting, const std::string& placement) {
  const TemporaryHome home;
  RoundTrips health;
  RoundTrips types;
  RoundTrips sdk;
  for (int i = 0; i < setting.rounds; ++i) {
    addRound(health, setting.serverIn(home.path()), "health", "healthy");
    addRound(types, setting.serverIn(home.path()), "list_interaction_types",
             "Per-interaction guidance");
    addRound(sdk, setting.sdkServer(), "health", "healthy");
  }
  Rows::Findings findings;
  const auto compare = [&](const std::string& tool, const RoundTrips& trips) {
    const std::string what = "`" + tool + "` call round trip" + placement;
    const std::string against = ", against the SDK server's tool";
    findings.push_back(timesBetter(what + ", median" + against, 2, sdk.median() / trips.median())
                           .with(trips.text(), sdk.text()));
    findings.push_back(
        timesBetter(what + ", p99" + against, 10, sdk.percentile99() / trips.percentile99())
            .with(trips.text(), sdk.text()));
  };
  compare("health", health);
  compare("list_interaction_types", types);
  return findings;
}

}  // namespace

Rows::Findings Rows::healthCall(const Setting& setting) {
  Findings findings = measure(setting, "");
  const OneCore core;
  for (auto& finding : measure(setting, " on one core")) findings.push_back(std::move(finding));
  return findings;
}

}  // namespace corvane::testing
