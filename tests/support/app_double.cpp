// Plays Corvane.app's program in tests: runs and does nothing. It leaves its process id in a file
// "pid" beside itself, and ends when it is told to or when its bundle has been removed.
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

int main(int, char** arguments) {
  namespace fs = std::filesystem;
  const fs::path program = arguments[0];
  const fs::path note = program.parent_path() / "pid";
  std::ofstream(note.string() + ".new") << ::getpid();
  std::error_code ignored;
  fs::rename(note.string() + ".new", note, ignored);
  while (fs::exists(program, ignored)) std::this_thread::sleep_for(std::chrono::milliseconds(20));
  return 0;
}
