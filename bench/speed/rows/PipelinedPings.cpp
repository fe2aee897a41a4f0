#include "bench/speed/Messages.h"
#include "bench/speed/Samples.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

constexpr std::size_t inFlight = 100'000;
/// How many times as many are sent to see whether memory grows with their number.
constexpr std::size_t moreTimes = 4;
/// What the peaks of two processes differ by that have done the same.
constexpr double sameKilobytes = 256;

struct Pipelined {
  Samples perSecond;
  Samples peakKilobytes;

  void addRound(const Contender::Command& command, const std::string& lines, std::size_t count) {
    Contender contender(command);
    contender.initialize();
    const auto start = std::chrono::steady_clock::now();
    contender.exchange(lines, count);
    perSecond.add(static_cast<double>(count) / millisecondsSince(start) * 1000);
    peakKilobytes.add(static_cast<double>(contender.kilobytes("VmHWM")));
  }
};

std::string thousands(double perSecond) {
  return shortNumber(perSecond / 1000) + " thousand/s";
}

}  // namespace

Rows::Findings Rows::pipelinedPings(const Setting& setting) {
  const TemporaryHome home;
  const std::string lines = Messages::pings(inFlight);
  const std::string moreLines = Messages::pings(moreTimes * inFlight);
  Pipelined server;
  Pipelined serverWithMore;
  Pipelined sdk;
  Pipelined floor;
  for (int i = 0; i < setting.rounds; ++i) {
    floor.addRound(setting.floorProgram(), lines, inFlight);
    server.addRound(setting.serverIn(home.path()), lines, inFlight);
    serverWithMore.addRound(setting.serverIn(home.path()), moreLines, moreTimes * inFlight);
    sdk.addRound(setting.sdkServer(), lines, inFlight);
  }
  Finding rate = timesBetter("pipelined pings, 100,000 in flight, against the SDK server", 5,
                             server.perSecond.median() / sdk.perSecond.median());
  rate.ours = thousands(server.perSecond.median());
  rate.others =
      thousands(sdk.perSecond.median()) + "; floor " + thousands(floor.perSecond.median());
  const double grown = serverWithMore.peakKilobytes.median() - server.peakKilobytes.median();
  Finding memory{"peak memory with 400,000 in flight instead of 100,000",
                 "no growth",
                 shortNumber(grown) + " KiB",
                 grown < sameKilobytes,
                 shortNumber(serverWithMore.peakKilobytes.median()) + " KiB",
                 shortNumber(server.peakKilobytes.median()) + " KiB"};
  return {rate, memory};
}

}  // namespace corvane::testing
