#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace CLI {
class App;
}

namespace corvane::manual {

/// An option, or an argument that is known by its place.
struct Option {
  /// All names, as they are typed: "-h", "--help"; for an argument the one that stands for it.
  std::vector<std::string> names;
  /// What stands for the value and says what it is, "TEST", "DIR", "iOS|android"; empty for a flag
  /// and for an argument.
  std::string value;
  std::string description;
  bool isArgument = false;
  bool required = false;
  /// Whether it takes more than one value.
  bool many = false;

  /// What its value is, "TEST", "DIR"; for an argument its name.
  [[nodiscard]] const std::string& kind() const { return isArgument ? names.front() : value; }
};

struct Command {
  std::string name;
  std::string description;
  std::vector<Option> options;
  /// Lines indented by two blanks.
  std::string examples;
};

/// The command line of one program, as its manual page and its completion tell it.
struct ProgramManual {
  std::string name;
  std::string description;
  std::vector<Option> options;
  std::vector<Command> commands;
  /// Further sections: a heading and paragraphs, or lines that begin with blanks and stand as they
  /// are.
  std::vector<std::pair<std::string, std::string>> sections;
};

/// The options of a command line that CLI11 reads.
[[nodiscard]] std::vector<Option> optionsOf(const CLI::App& app);

/// What stands at the foot of a manual page.
struct Edition {
  std::string version;
  /// Like "2026-01-31".
  std::string date;
};

/// The program's manual page, in the language of man(7).
[[nodiscard]] std::string manualPage(const ProgramManual& program, const Edition& edition);

// What completes the program's command line in a shell. The names of projects, tests and requests
// come from the program itself, from its hidden command `names`.

[[nodiscard]] std::string bashCompletion(const ProgramManual& program);
[[nodiscard]] std::string zshCompletion(const ProgramManual& program);
[[nodiscard]] std::string fishCompletion(const ProgramManual& program);

}  // namespace corvane::manual
