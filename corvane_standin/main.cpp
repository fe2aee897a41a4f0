#include <sys/stat.h>
#include <unistd.h>

#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/paths/AgentPaths.h"
#include "corvane_standin/Settings.h"
#include "corvane_standin/StandIn.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/program/Instance.h"
#include "corvane_standin/program/Options.h"
#include "corvane_standin/scenario/ScenarioFile.h"
#include "corvane_standin/scenario/ScenarioSchema.h"
#include "corvane_standin/workspace/Workspace.h"

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

/// Makes `folder` the home of this process, whatever its environment says. Pictures are drawn with
/// libraries that keep things in a home too.
void moveInto(const std::string& folder) {
  const std::string home = std::filesystem::absolute(folder).lexically_normal();
  for (const char* variable : {"HOME", "CFFIXED_USER_HOME"}) ::setenv(variable, home.c_str(), 1);
  for (const char* variable : {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME"}) {
    ::unsetenv(variable);
  }
}

/// The scenario that was asked for, else the home's settings, if there are any.
Scenario readScenario(const Options& options, const StandInPaths& files) {
  if (options.scenario) return Scenario::read(*options.scenario, *options.scenario);
  if (!fileExists(files.settingsFile())) return {};
  return Scenario::read(files.settingsFile(), "settings.json");
}

std::unique_ptr<Clock> clockFor(const StandInSettings& settings) {
  if (settings.clock) return std::make_unique<FixedClock>(*settings.clock);
  return std::make_unique<SystemClock>();
}

int loop(StandIn& standIn, Clock& clock, const InstanceLock& lock, const StopSignals& stop,
         const StandInLog& log) {
  constexpr auto pause = 15ms;
  while (lock.inPlace()) {
    if (stop.arrived()) {
      standIn.quit();
      log.info("quit as asked");
      return 0;
    }
    if (!standIn.tick()) {
      log.warn("crashing, as an outcome asks for");
      constexpr int softwareFault = 70;
      ::_exit(softwareFault);
    }
    clock.sleep(pause);
  }
  log.info("quit because the home is gone");
  return 0;
}

int run(const Options& options) {
  if (options.printSchema) {
    std::cout << scenarioSchema();
    return 0;
  }
  if (options.home) moveInto(*options.home);
  const auto paths = AgentPaths::current();
  const StandInPaths files(paths);
  if (options.quit) return quitRunningInstance(files);

  const auto asked = overriddenBy(options, {}).problem();
  if (asked) {
    std::cerr << "Corvane: " << *asked << "\n";
    return 2;
  }
  // Not even what a run captures is for others.
  ::umask(S_IRWXG | S_IRWXO);
  auto scenario = readScenario(options, files);
  // Somebody who starts it by hand sees at once what is wrong; a server's start goes on regardless.
  const bool isByHand = options.scenario || ::isatty(STDERR_FILENO) == 1;
  if (!scenario.problems.empty() && isByHand) {
    for (const auto& problem : scenario.problems) std::cerr << "Corvane: " << problem << "\n";
    return 2;
  }
  if (!fileExists(paths.home())) {
    std::cerr << "Corvane: there is no home folder " << displayPath(paths.home()) << "\n";
    return 1;
  }
  // What an earlier life left in the home may have names that nobody can foretell.
  if (options.scenario && !fileExists(paths.agentContextFile())) {
    for (const auto& hint : scenario.hints) std::cerr << "Corvane: " << hint << "\n";
  }
  const auto settings = overriddenBy(options, std::move(scenario.settings));
  ensureDirectoryExists(files.directory());
  // Before the lock is taken: from then on other processes may ask this one to stop.
  const StopSignals stop;
  const auto lock = InstanceLock::tryAcquire(files.lockFile());
  if (!lock) {
    std::cerr << "Corvane is already running for this home.\n";
    return 0;
  }
  const auto clock = clockFor(settings);
  const StandInLog log(files.logFile(), *clock);
  log.info("started as process " + std::to_string(::getpid()));
  for (const auto& problem : scenario.problems) log.warn(problem);
  StandIn standIn(paths, settings, *clock, log,
                  scenario.workspace ? std::move(*scenario.workspace) : firstWorkspace());
  return loop(standIn, *clock, *lock, stop, log);
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
