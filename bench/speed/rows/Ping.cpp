#include <optional>
#include <utility>

#include "bench/speed/Cores.h"
#include "bench/speed/Messages.h"
#include "bench/speed/RoundTrips.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

constexpr std::size_t pingsPerRound = 5000;

void addRound(RoundTrips& trips, Contender::Command command, std::optional<int> core) {
  command.core = core;
  Contender contender(std::move(command));
  contender.initialize();
  trips.addRound(contender, pingsPerRound, Messages::ping, "\"result\":{}");
}

struct Pings {
  RoundTrips server;
  RoundTrips sdk;
  RoundTrips floor;
  RoundTrips loggingFloor;

  /// `core` is the only one that contenders may use, if they are not to go where the driver may.
  explicit Pings(const Setting& setting, std::optional<int> core = std::nullopt) {
    const TemporaryHome home;
    for (int i = 0; i < setting.rounds; ++i) {
      addRound(floor, setting.floorProgram(), core);
      addRound(loggingFloor, setting.loggingFloor(), core);
      addRound(server, setting.serverIn(home.path()), core);
      addRound(sdk, setting.sdkServer(), core);
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

  /// Across cores waking takes most of the time, so being close to the floor there counts as well.
  void acceptCloseToFloor(Finding& finding) const {
    constexpr double closest = 1.5;
    const double times = server.median() / floor.median();
    finding.required += ", or ≤ " + shortNumber(closest) + " × the floor on two cores";
    finding.measured += "; " + shortNumber(times) + " × the floor on two cores";
    finding.reached = finding.reached || times <= closest;
    finding.ours += "; on two cores " + server.text();
    finding.others += "; floor on two cores " + floor.text();
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
  Findings findings = Pings(setting).againstSdk("ping round trip");
  const OneCore core;
  if (const auto another = core.another()) {
    Pings(setting, another).acceptCloseToFloor(findings.front());
  }
  const Pings together(setting);
  const std::string what = "ping round trip on one core";
  for (auto& finding : together.againstSdk(what)) findings.push_back(std::move(finding));
  findings.push_back(together.againstFloor(what));
  return findings;
}

}  // namespace corvane::testing
