// Plays sessions against a server, or writes down which tools it offers.
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string_view>
#include <vector>

#include "CorvaneCore/json/JsonReader.h"
#include "tests/sessions/SessionPlayer.h"
#include "tests/sessions/ToolSnapshots.h"

namespace {

using namespace corvane;
using namespace corvane::testing;

/// How many of the scripts did not go as they say.
int play(const std::filesystem::path& server, const std::vector<std::string_view>& files) {
  int failures = 0;
  for (const auto file : files) {
    try {
      SessionPlayer(SessionScript::read(file), server).play();
    } catch (const std::exception& failure) {
      ++failures;
      std::cerr << failure.what() << "\n";
    }
  }
  std::cout << files.size() - static_cast<std::size_t>(failures) << " of " << files.size()
            << " sessions went as written\n";
  return failures;
}

void writeTools(const std::filesystem::path& server, const std::filesystem::path& folder) {
  const TemporaryHome home;
  ServerProcess process({server, home.path()});
  process.sendLine(R"({"jsonrpc":"2.0","id":1,"method":"tools/list"})");
  ToolSnapshots::write(readJson(process.readLine()), folder);
}

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string_view> given(arguments + 1, arguments + count);
  if (given.size() < 2) {
    std::cerr << "usage: SessionRunner SERVER SCRIPT...\n"
                 "       SessionRunner SERVER --write-tools FOLDER\n";
    return EXIT_FAILURE;
  }
  if (given[1] == "--write-tools" && given.size() == 3) {
    writeTools(given[0], given[2]);
    return EXIT_SUCCESS;
  }
  return play(given[0], {given.begin() + 1, given.end()}) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
