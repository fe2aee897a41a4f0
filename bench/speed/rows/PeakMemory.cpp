#include "bench/speed/Messages.h"
#include "bench/speed/Samples.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

constexpr std::size_t pings = 5000;
constexpr std::size_t inFlight = 100'000;
constexpr std::size_t calls = 3000;

/// The most memory that a process held which has been through the rows before this one.
double peakMebibytes(const Contender::Command& command, const std::string& pipelined) {
  Contender contender(command);
  contender.initialize();
  for (std::size_t id = 1; id <= pings; ++id) contender.ask(Messages::ping(id), "result");
  contender.exchange(pipelined, inFlight);
  for (std::size_t id = 1; id <= calls; ++id) {
    contender.ask(Messages::call(id, "health", "{}"), "healthy");
  }
  return static_cast<double>(contender.kilobytes("VmHWM")) / 1024;
}

}  // namespace

Rows::Findings Rows::peakMemory(const Setting& setting) {
  const TemporaryHome home;
  const std::string pipelined = Messages::pings(inFlight);
  Samples server;
  Samples sdk;
  for (int i = 0; i < setting.rounds; ++i) {
    server.add(peakMebibytes(setting.serverIn(home.path()), pipelined));
    sdk.add(peakMebibytes(setting.sdkServer(), pipelined));
  }
  Finding finding = timesBetter("peak memory after all of the above, against the SDK server", 15,
                                sdk.median() / server.median());
  finding.ours = shortNumber(server.median()) + " MiB";
  finding.others = shortNumber(sdk.median()) + " MiB";
  return {finding};
}

}  // namespace corvane::testing
