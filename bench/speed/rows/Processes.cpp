#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "bench/speed/Messages.h"
#include "bench/speed/WholeCall.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

/// Processes that do nothing, for as long as it lives.
class Crowd {
 public:
  explicit Crowd(int count) {
    for (int i = 0; i < count; ++i) {
      const pid_t process = ::fork();
      if (process < 0) throw std::system_error(errno, std::generic_category(), "could not fork");
      if (process == 0) {
        while (true) ::pause();
      }
      processes.push_back(process);
    }
  }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;
  ~Crowd() {
    for (const pid_t process : processes) ::kill(process, SIGKILL);
    for (const pid_t process : processes) ::waitpid(process, nullptr, 0);
  }

 private:
  std::vector<pid_t> processes;
};

}  // namespace

Rows::Findings Rows::processes(const Setting& setting) {
  const TemporaryHome home;
  std::filesystem::create_directories(home.path() / "Applications" / "Corvane.app");
  const Crowd crowd(2000);
  WholeCall call(setting, home.path(),
                 Messages::call(1, "run_test", R"({"projectName":"Shop","runAll":true})"),
                 "dispatched to Corvane");
  for (int i = 0; i < setting.rounds; ++i) {
    call.addFloorRound({"processes", "Corvane.app", "Corvane"});
    call.addServerRound();
  }
  return {call.timesTheFloor(
      "`run_test` beside 2,000 processes, against a scan of their command lines in C", 1.3)};
}

}  // namespace corvane::testing
