#include "StandInHome.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "tests/support/Preload.h"

namespace corvane::testing {

namespace {

namespace fs = std::filesystem;

pid_t start(std::vector<std::string> words, std::vector<std::string> environment) {
  posix_spawn_file_actions_t quiet;
  ::posix_spawn_file_actions_init(&quiet);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    ::posix_spawn_file_actions_addopen(&quiet, stream, "/dev/null", O_RDWR, 0);
  }
  pid_t child = -1;
  ::posix_spawn(&child, words.front().c_str(), &quiet, nullptr, pointersTo(words).data(),
                pointersTo(environment).data());
  ::posix_spawn_file_actions_destroy(&quiet);
  return child;
}

}  // namespace

StandInHome::StandInHome(const std::string& outcomes) {
  const fs::path support = paths().applicationSupport();
  writeFileWhole(support / "StandIn" / "settings.json",
                 R"({"stepSeconds":0.01,"buildSeconds":0.01,"coldStartSeconds":0,)"
                 R"("heartbeatSeconds":1,"captures":false,"outcomes":)" +
                     outcomes + "}");
  fs::create_directories(folder.path() / "Applications");
  fs::create_symlink(STANDIN_BUNDLE, folder.path() / "Applications" / "Corvane.app");
}

StandInHome::~StandInHome() {
  quitApp();
}

std::vector<std::string> StandInHome::environment() const {
  auto variables = homeVariables(folder.path());
  variables.insert(variables.end(), {"PATH=/usr/bin:/bin", "LANG=C.UTF-8",
                                     std::string(preloadVariable) + "=" OWN_PROCESSES_LIBRARY});
  return variables;
}

ProgramRun StandInHome::run(const std::vector<std::string>& arguments) const {
  return runCorvanectl(arguments, {}, environment());
}

void StandInHome::startApp(const StandInHome* from) const {
  const std::string program = (from ? from : this)->home().path() / "Applications" / "Corvane.app" /
                              "Contents" / "MacOS" / "Corvane";
  if (start({program}, environment()) < 0) throw std::runtime_error("the stand-in does not start");
  constexpr auto longest = std::chrono::seconds(50);
  const auto end = std::chrono::steady_clock::now() + longest;
  while (!fileExists(paths().agentContextFile()) || !fileExists(paths().agentActivityFile())) {
    if (std::chrono::steady_clock::now() > end) throw std::runtime_error("no workspace");
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

void StandInHome::quitApp() const {
  const std::string program = fs::path(STANDIN_BUNDLE) / "Contents" / "MacOS" / "Corvane";
  int status = 0;
  ::waitpid(start({program, "--quit"}, environment()), &status, 0);
}

std::string StandInHome::finishRun(const std::vector<std::string>& tests) const {
  std::vector<std::string> words{"run", "Corner Shop", "--follow"};
  for (const auto& test : tests) words.insert(words.end(), {"--test", test});
  const ProgramRun followed = run(words);
  const auto id = AnswerTexts::readRequestId(followed.output);
  if (!id) throw std::runtime_error("no request: " + followed.output + followed.errors);
  return *id;
}

}  // namespace corvane::testing
