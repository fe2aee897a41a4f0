#include "bench/speed/Messages.h"
#include "bench/speed/OneCore.h"
#include "bench/speed/RoundTrips.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

constexpr std::size_t pingsPerRound = 5000;

void addRound(RoundTrips& trips, const Contender::Command& command) {
  Contender contender(command);
  contender.initialize();
  trips.addRound(contender, pingsPerRound, Messages::ping, "\"result\":{}");
}

struct Pings {
  RoundTrips server;
  RoundTrips sdk;
  RoundTrips floor;
  RoundTrips loggingFloor;

  void addRounds(const Setting& setting) {
    const TemporaryHome home;
    for (int i = 0; i < setting.rounds; ++i) {
      addRound(floor, setting.floorProgram());
      addRound(loggingFloor, setting.loggingFloor());
      addRound(server, setting.serverIn(home.path()));
      addRound(sdk, setting.sdkServer());
    }
  }

  [[nodiscard]] Rows::Findings againstSdk(const std::string& what) const {
    Finding median =
        timesBetter(what + ", median, against the SDK server", 4, sdk.median() / server.median());
    Finding percentile = timesBetter(what + ", p99, against the SDK server", 50,
                                     sdk.percentile99() / server.percentile99());
    median.ours = percentile.ours = server.text();
    median.others = percentile.others = sdk.text();
    return {median, percentile};
  }

  /// Where waking across cores takes most of the time, being close to the floor counts as well.
  void acceptCloseToFloor(Finding& finding) const {
    constexpr double closest = 1.5;
    const double times = server.median() / floor.median();
    finding.required += ", or ≤ " + shortNumber(closest) + " × the floor";
    finding.measured += "; " + shortNumber(times) + " × the floor";
    finding.reached = finding.reached || times <= closest;
    finding.others += "; floor " + floor.text();
  }

  [[nodiscard]] Finding againstFloor(const std::string& what) const {
    const double logLine = loggingFloor.median() - floor.median();
    Finding finding = timesAtMost(what + ", median less one log line, against the floor", 3,
                                  (server.median() - logLine) / floor.median());
    finding.ours = server.text();
    finding.others = floor.text() + "; log line " + shortNumber(logLine) + " µs";
    return finding;
  }
};

}  // namespace

Rows::Findings Rows::ping(const Setting& setting) {
  Pings anywhere;
  anywhere.addRounds(setting);
  Findings findings = anywhere.againstSdk("ping round trip");
  anywhere.acceptCloseToFloor(findings.front());

  const OneCore core;
  Pings together;
  together.addRounds(setting);
  const std::string what = "ping round trip on one core";
  for (auto& finding : together.againstSdk(what)) findings.push_back(std::move(finding));
  findings.push_back(together.againstFloor(what));
  return findings;
}

}  // namespace corvane::testing
