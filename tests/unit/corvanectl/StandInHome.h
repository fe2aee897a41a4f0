#pragma once

#include <string>
#include <vector>

#include "ProgramRun.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

/// A private home with the built server and the stand-in for Corvane.app in it, in which corvanectl
/// runs as a person runs it. Of other homes' apps nothing can be seen from there. At the end of its
/// life the stand-in has quit.
class StandInHome {
 public:
  /// Steps take next to no time, and every test turns out as `outcomes`, a JSON object, says.
  explicit StandInHome(const std::string& outcomes = "{}");
  StandInHome(const StandInHome&) = delete;
  StandInHome& operator=(const StandInHome&) = delete;
  ~StandInHome();

  [[nodiscard]] const TemporaryHome& home() const { return folder; }
  [[nodiscard]] AgentPaths paths() const { return folder.programPaths(); }

  /// Runs corvanectl in this home.
  [[nodiscard]] ProgramRun run(const std::vector<std::string>& arguments) const;

  /// Starts the stand-in and waits until it has published its workspace. `from` is the home whose
  /// program it is; else this one's.
  void startApp(const StandInHome* from = nullptr) const;
  /// Has the stand-in quit, if it runs.
  void quitApp() const;

  /// Runs these tests of the project "Corner Shop" to their end; gives the request's id.
  [[nodiscard]] std::string finishRun(const std::vector<std::string>& tests) const;

  /// The environment of programs in this home, as NAME=value.
  [[nodiscard]] std::vector<std::string> environment() const;

 private:
  TemporaryHome folder;
};

}  // namespace corvane::testing
