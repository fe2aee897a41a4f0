#include <array>
#include <cstdio>
#include <thread>

#include "bench/speed/Documents.h"
#include "bench/speed/Messages.h"
#include "bench/speed/Samples.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

constexpr std::size_t callCount = 1000;
constexpr std::chrono::seconds settling{1};
constexpr std::chrono::seconds observed{4};

std::string requestId(std::size_t number) {
  std::array<char, 40> text;
  std::snprintf(text.data(), text.size(), "00000000-0000-4000-8000-%012zx", number);
  return text.data();
}

std::string waitFor(std::size_t number, const char* seconds) {
  return Messages::call(
      number, "get_result",
      R"({"requestId":")" + requestId(number) + R"(","waitSeconds":)" + seconds + "}");
}

struct Waiting {
  Samples percentOfCore;
  Samples kilobytesPerCall;

  void addRound(const Setting& setting, const std::filesystem::path& home) {
    Contender contender(setting.serverIn(home));
    contender.initialize();
    contender.ask(waitFor(0, "0"), "status: running");
    const auto before = contender.kilobytes("VmRSS");
    for (std::size_t i = 1; i <= callCount; ++i) contender.send(waitFor(i, "240"));
    std::this_thread::sleep_for(settling);
    const auto start = std::chrono::steady_clock::now();
    const auto used = contender.processorTime();
    std::this_thread::sleep_for(observed);
    const std::chrono::duration<double, std::milli> usedMeanwhile =
        contender.processorTime() - used;
    percentOfCore.add(100 * usedMeanwhile.count() / millisecondsSince(start));
    kilobytesPerCall.add(static_cast<double>(contender.kilobytes("VmRSS") - before) / callCount);
  }
};

}  // namespace

Rows::Findings Rows::waitingCalls(const Setting& setting) {
  const TemporaryHome home;
  for (std::size_t i = 0; i <= callCount; ++i) {
    Documents::writeRunningResult(requestId(i), home.paths());
  }
  Waiting waiting;
  for (int i = 0; i < setting.rounds; ++i) waiting.addRound(setting, home.path());
  const double percent = waiting.percentOfCore.median();
  const double kilobytes = waiting.kilobytesPerCall.median();
  return {{"1,000 waiting `get_result` calls, share of one core", "< 3 %",
           shortNumber(percent) + " %", percent < 3, shortNumber(percent) + " %", "—"},
          {"1,000 waiting `get_result` calls, memory for each", "< 16 KiB",
           shortNumber(kilobytes) + " KiB", kilobytes < 16, shortNumber(kilobytes) + " KiB", "—"}};
}

}  // namespace corvane::testing
