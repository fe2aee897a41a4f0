#include <algorithm>

#include "corvanectl/terminal/ShellWord.h"
#include "manual/ShellScan.h"

namespace corvane::manual {

namespace {

using ctl::shellWord;

/// What fish is to complete a value of this kind with.
std::string valuesOf(const std::string& program, const std::string& kind) {
  const std::string listing = listingOf(kind);
  if (!listing.empty()) {
    std::string call = listing;
    const std::string_view project = "\"$project\"";
    if (const std::size_t at = call.find(project); at != std::string::npos) {
      call.replace(at, project.size(), "(__" + program + "_project)");
    }
    return " -x -a " + shellWord("(" + program + " " + call + " 2>/dev/null)");
  }
  if (kind == "DIR") return " -x -a '(__fish_complete_directories)'";
  if (kind.find('|') != std::string::npos) {
    std::string words = kind;
    std::ranges::replace(words, '|', ' ');
    return " -x -a " + shellWord(words);
  }
  if (kind == "FILE" || kind == "PROGRAM" || kind == "ARGUMENTS") return " -r -F";
  return " -x";
}

std::string optionLine(const std::string& program, const Option& option,
                       const std::string& condition) {
  std::string line = "complete -c " + program + condition;
  if (option.isArgument) return line + valuesOf(program, option.kind()) + "\n";
  for (const std::string& name : option.names) {
    line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  if (!option.value.empty()) line += valuesOf(program, option.value);
  return line + " -d " + shellWord(option.description) + "\n";
}

}  // namespace

std::string fishCompletion(const ProgramManual& program) {
  const std::string name = program.name;
  std::string text = "# Completes " + name + " in fish.\n\n";
  text += "# The project that the line names, if it names one.\nfunction __" + name + "_project\n";
  text += R"(  set -l words (commandline -opc)
  for command in run tests
    if set -l place (contains -i -- $command $words)
      set -l project $words[(math $place + 1)]
      string match -q -- '-*' $project; or echo $project
      return
    end
  end
end

)";
  text += "complete -c " + name + " -f\n";
  for (const Option& option : program.options) text += optionLine(name, option, "");
  std::string names;
  for (const Command& command : program.commands) {
    text += "complete -c " + name + " -n __fish_use_subcommand -a " + command.name + " -d " +
            shellWord(command.description) + "\n";
    names += (names.empty() ? "" : " ") + command.name;
  }
  for (const Command& command : program.commands) {
    const std::string condition = " -n '__fish_seen_subcommand_from " + command.name + "'";
    for (const Option& option : command.options) {
      if (option.isArgument && option.kind() == "COMMAND") {
        text += "complete -c " + name + condition + " -x -a '" + names + "'\n";
      } else {
        text += optionLine(name, option, condition);
      }
    }
  }
  return text;
}

}  // namespace corvane::manual
