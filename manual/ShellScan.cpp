#include "manual/ShellScan.h"

#include "corvanectl/terminal/ShellWord.h"

namespace corvane::manual {

namespace {

using ctl::shellWord;

/// A branch for each option that takes a value, under the command it belongs to.
std::string valueBranches(const std::vector<Option>& options, const std::string& command) {
  std::string text;
  for (const Option& option : options) {
    if (option.isArgument || option.value.empty()) continue;
    for (const auto& name : option.names) {
      const std::string pattern =
          command.empty() ? "*\" " + name + "\"" : "\"" + command + " " + name + "\"";
      text += "        " + pattern + ") kind=" + shellWord(option.value) +
              (option.many ? " many=1" : "") + " ;;\n";
    }
  }
  return text;
}

std::string placeBranches(const ProgramManual& program) {
  std::string text = "      \" 0\") kind=COMMAND ;;\n";
  for (const Command& command : program.commands) {
    int place = 0;
    for (const Option& option : command.options) {
      if (!option.isArgument) continue;
      text += "      \"" + command.name + " " + std::to_string(place++) +
              "\") kind=" + shellWord(option.kind()) + " ;;\n";
    }
  }
  return text;
}

std::string optionNames(const std::vector<Option>& options) {
  std::string names;
  for (const Option& option : options) {
    if (option.isArgument) continue;
    for (const auto& name : option.names) names += (names.empty() ? "" : " ") + name;
  }
  return names;
}

std::string optionBranches(const ProgramManual& program) {
  std::string text;
  for (const Command& command : program.commands) {
    text += "    " + command.name + ") options='" + optionNames(command.options) + "' ;;\n";
  }
  return text;
}

}  // namespace

std::string listingOf(std::string_view kind) {
  if (kind == "PROJECT") return "names projects";
  if (kind == "TEST") return "names tests \"$project\"";
  if (kind == "SUITE") return "names suites \"$project\"";
  if (kind == "REQUEST_ID") return "names requests";
  if (kind == "TOOL") return "names tools";
  if (kind == "CLIENT") return "names clients";
  return {};
}

std::string ShellScan::script(const ProgramManual& program) const {
  std::string text = "  local command= kind= many= place=0 project= options= word i\n";
  text += "  for ((i = " + first + "; i < " + last + "; i++)); do\n";
  text += "    word=${" + words + "[i]}\n";
  text +=
      "    if [[ $word == -* ]]; then\n"
      "      kind= many=\n"
      "      case \"$command $word\" in\n";
  text += valueBranches(program.options, "");
  for (const Command& command : program.commands) {
    text += valueBranches(command.options, command.name);
  }
  text +=
      "      esac\n"
      "    elif [[ -n $kind ]]; then\n"
      "      [[ -n $many ]] || kind=\n"
      "    elif [[ -z $command ]]; then\n"
      "      command=$word\n"
      "    else\n";
  text += "      [[ $place != 0 ]] || project=" + unquoted + "\n";
  text +=
      "      place=$((place + 1))\n"
      "    fi\n"
      "  done\n"
      "  case $command in\n";
  text += optionBranches(program);
  text += "  esac\n";
  text += "  options+=' " + optionNames(program.options) + "'\n";
  text +=
      "  if [[ -z $kind ]]; then\n"
      "    case \"$command $place\" in\n";
  text += placeBranches(program);
  text +=
      "    esac\n"
      "  fi\n";
  return text;
}

}  // namespace corvane::manual
