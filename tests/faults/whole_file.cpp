// Does what it is told on standard input, a line each, so that a test can let every step of it go
// wrong: "write PATH" writes "new" into a file and "read PATH" reads one. Answers "done", with what
// was read, or with the error.
#include <iostream>
#include <string>

#include "CorvaneCore/files/Files.h"

namespace {

std::string carriedOut(const std::string& command) {
  const std::string path = command.substr(command.find(' ') + 1);
  try {
    if (command.starts_with("read ")) return corvane::readFile(path);
    corvane::writeFileWhole(path, "new");
    return "done";
  } catch (const corvane::FileError& error) {
    return error.what();
  }
}

}  // namespace

int main() {
  for (std::string line; std::getline(std::cin, line);) std::cout << carriedOut(line) << std::endl;
  return 0;
}
