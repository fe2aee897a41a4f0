#include "ProgramRun.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "CorvaneCore/files/Files.h"
#include "FakeServerScript.h"
#include "TemporaryDirectory.h"

namespace corvane {

namespace {

void redirect(int stream, const std::filesystem::path& file, int flags) {
  const int descriptor = ::open(file.c_str(), flags, 0600);
  if (descriptor < 0) ::_exit(127);
  ::dup2(descriptor, stream);
  ::close(descriptor);
}

}  // namespace

ProgramRun runCorvanectl(const std::vector<std::string>& arguments, std::string_view input) {
  const TemporaryDirectory directory;
  const auto inputFile = directory.path() / "input";
  const auto outputFile = directory.path() / "output";
  const auto errorsFile = directory.path() / "errors";
  writeFileWhole(inputFile, input);
  const pid_t child = ::fork();
  if (child == 0) {
    redirect(STDIN_FILENO, inputFile, O_RDONLY);
    redirect(STDOUT_FILENO, outputFile, O_WRONLY | O_CREAT);
    redirect(STDERR_FILENO, errorsFile, O_WRONLY | O_CREAT);
    becomeCorvanectl(arguments);
  }
  const int status = waitForStatus(child);
  constexpr std::size_t largestOutput = std::size_t{1} << 30;
  return {status, readFile(outputFile, largestOutput), readFile(errorsFile)};
}

ProgramRun runWithFakeServer(std::vector<std::string> arguments, std::string_view input) {
  arguments.insert(arguments.begin(), {"--server", FakeServerScript::program()});
  return runCorvanectl(arguments, input);
}

int waitForStatus(int processId) {
  int status = 0;
  ::waitpid(processId, &status, 0);
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void becomeCorvanectl(const std::vector<std::string>& arguments) {
  std::vector<std::string> words{CORVANECTL_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (auto& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  ::execv(pointers.front(), pointers.data());
  ::_exit(127);
}

}  // namespace corvane
