#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/paths/AgentPaths.h"
#include "corvane_standin/Settings.h"
#include "corvane_standin/StandIn.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/program/Instance.h"
#include "corvane_standin/program/Options.h"

namespace {

using namespace corvane;
using namespace corvane::standin;
using namespace std::chrono_literals;

StandInSettings overriddenBy(const Options& options, StandInSettings settings) {
  settings.stepSeconds = options.stepSeconds.value_or(settings.stepSeconds);
  settings.buildSeconds = options.buildSeconds.value_or(settings.buildSeconds);
  settings.heartbeatSeconds = options.heartbeatSeconds.value_or(settings.heartbeatSeconds);
  settings.coldStartSeconds = options.coldStartSeconds.value_or(settings.coldStartSeconds);
  return settings;
}

int quitRunningInstance(const StandInPaths& files) {
  constexpr auto timeout = 10s;
  if (quitInstance(files.lockFile(), timeout)) return 0;
  std::cerr << "Corvane does not quit.\n";
  return 1;
}

int loop(StandIn& standIn, const InstanceLock& lock, const StopSignals& stop,
         const StandInLog& log) {
  constexpr auto pause = 15ms;
  while (lock.inPlace()) {
    if (stop.arrived()) {
      standIn.quit();
      log.info("quit as asked");
      return 0;
    }
    if (!standIn.tick()) {
      log.warn("crashing, as the outcome of a test asks for");
      constexpr int softwareFault = 70;
      ::_exit(softwareFault);
    }
    std::this_thread::sleep_for(pause);
  }
  log.info("quit because the home is gone");
  return 0;
}

int run(const Options& options) {
  const auto paths = AgentPaths::current();
  const StandInPaths files(paths);
  if (options.quit) return quitRunningInstance(files);

  const auto asked = overriddenBy(options, {}).problem();
  if (asked) {
    std::cerr << "Corvane: " << *asked << "\n";
    return 2;
  }
  if (!fileExists(paths.home())) {
    std::cerr << "Corvane: there is no home folder " << displayPath(paths.home()) << "\n";
    return 1;
  }
  // Not even what a run captures is for others.
  ::umask(S_IRWXG | S_IRWXO);
  std::vector<std::string> problems;
  const auto settings =
      overriddenBy(options, StandInSettings::load(files.settingsFile(), problems));
  for (auto& problem : problems) problem.insert(0, "settings.json: ");
  // Somebody who starts it by hand sees at once what is wrong; a server's start goes on regardless.
  if (!problems.empty() && ::isatty(STDERR_FILENO) == 1) {
    for (const auto& problem : problems) std::cerr << "Corvane: " << problem << "\n";
    return 2;
  }
  ensureDirectoryExists(files.directory());
  // Before the lock is taken: from then on other processes may ask this one to stop.
  const StopSignals stop;
  const auto lock = InstanceLock::tryAcquire(files.lockFile());
  if (!lock) {
    std::cerr << "Corvane is already running for this home.\n";
    return 0;
  }
  const SystemClock clock;
  const StandInLog log(files.logFile(), clock);
  log.info("started as process " + std::to_string(::getpid()));
  for (const auto& problem : problems) log.warn(problem);
  StandIn standIn(paths, settings, clock, log);
  return loop(standIn, *lock, stop, log);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App program(programDescription);
  Options options;
  options.addTo(program);
  CLI11_PARSE(program, argc, argv);
  try {
    return run(options);
  } catch (const std::exception& error) {
    std::cerr << "Corvane: " << error.what() << "\n";
    return 1;
  }
}
