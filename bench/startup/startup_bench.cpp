// Prints as Markdown how long programs take from their start to their end, input at its end:
//   startup_bench ROUNDS PROGRAM...
// Each is started once in every round, in turn.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "bench/speed/Samples.h"
#include "tests/support/TemporaryHome.h"

namespace {

using namespace corvane;
using namespace corvane::testing;

double millisecondsToRun(const std::string& program, const std::filesystem::path& home) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
  }
  std::string name = program;
  auto variables = homeVariables(home);
  const std::array<char*, 2> arguments{name.data(), nullptr};
  const std::array<char*, 3> environment{variables[0].data(), variables[1].data(), nullptr};
  const auto start = std::chrono::steady_clock::now();
  pid_t process = -1;
  const int error = ::posix_spawn(&process, name.c_str(), &actions, nullptr, arguments.data(),
                                  environment.data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::system_error(error, std::generic_category(), program);
  ::waitpid(process, nullptr, 0);
  const auto taken = std::chrono::steady_clock::now() - start;
  return std::chrono::duration<double, std::milli>(taken).count();
}

void run(int rounds, const std::vector<std::string>& programs) {
  const TemporaryHome home;
  std::vector<Samples> samples(programs.size());
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < programs.size(); ++i) {
      samples[i].add(millisecondsToRun(programs[i], home.path()));
    }
  }
  std::cout << "| program | start to end, median | more than the first |\n|---|---|---|\n";
  for (std::size_t i = 0; i < programs.size(); ++i) {
    std::array<char, 64> figures;
    std::snprintf(figures.data(), figures.size(), "%.2f ms | %.2f ms", samples[i].median(),
                  samples[i].median() - samples[0].median());
    std::cout << "| " << std::filesystem::path(programs[i]).filename().string() << " | "
              << figures.data() << " |\n";
  }
}

}  // namespace

int main(int argumentCount, char** arguments) {
  try {
    if (argumentCount < 3) throw std::invalid_argument("usage: startup_bench ROUNDS PROGRAM...");
    run(std::stoi(arguments[1]), {arguments + 2, arguments + argumentCount});
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "startup_bench: " << error.what() << "\n";
    return 1;
  }
}
