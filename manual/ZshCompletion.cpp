#include "corvanectl/terminal/ShellWord.h"
#include "manual/ShellScan.h"

namespace corvane::manual {

namespace {

using ctl::shellWord;

/// An entry of zsh's _describe.
std::string described(const std::string& name, const std::string& description) {
  std::string entry;
  for (const char c : name) entry += c == ':' ? std::string("\\:") : std::string(1, c);
  return shellWord(entry + ":" + description);
}

std::string optionList(const std::vector<Option>& options) {
  std::string list;
  for (const Option& option : options) {
    if (option.isArgument) continue;
    for (const auto& name : option.names) list += " " + described(name, option.description);
  }
  return list;
}

}  // namespace

std::string zshCompletion(const ProgramManual& program) {
  const std::string name = program.name;
  const std::string function = "_" + name;
  std::string text = "#compdef " + name + "\n\n" + function + "() {\n";
  text += "  local -a candidates\n";
  text +=
      ShellScan{.words = "words", .first = "2", .last = "CURRENT", .unquoted = "${(Q)word}"}.script(
          program);
  text += "  [[ ${words[CURRENT]} == -* ]] && kind=OPTION\n  case $kind in\n    OPTION)\n";
  text += "      candidates=(" + optionList(program.options) + ")\n      case $command in\n";
  for (const Command& command : program.commands) {
    text += "        " + command.name + ") candidates+=(" + optionList(command.options) + ") ;;\n";
  }
  text +=
      "      esac\n      _describe option candidates\n      ;;\n    COMMAND)\n      candidates=(";
  for (const Command& command : program.commands) {
    text += " " + described(command.name, command.description);
  }
  text += ")\n      _describe command candidates\n      ;;\n";
  for (const char* kind : {"PROJECT", "TEST", "SUITE", "REQUEST_ID", "TOOL", "CLIENT"}) {
    text += "    " + std::string(kind) + ") candidates=(\"${(@f)$(" + name + " " + listingOf(kind) +
            " 2>/dev/null)}\") && compadd -a candidates ;;\n";
  }
  text += "    DIR) _files -/ ;;\n";
  text += "    ARGUMENTS) compset -P @ && _files ;;\n";
  text += "    FILE | PROGRAM) _files ;;\n";
  text += "    *'|'*) candidates=(${(s:|:)kind}) && compadd -a candidates ;;\n";
  return text + "  esac\n}\n\n" + function + " \"$@\"\n";
}

}  // namespace corvane::manual
