#include "manual/ShellScan.h"

namespace corvane::manual {

namespace {

std::string commandNames(const ProgramManual& program) {
  std::string names;
  for (const Command& command : program.commands)
    names += (names.empty() ? "" : " ") + command.name;
  return names;
}

}  // namespace

std::string bashCompletion(const ProgramManual& program) {
  const std::string name = program.name;
  const std::string function = "_" + name;
  std::string text = "# Completes " + name + " in bash.\n\n";

  text += "# Offers the lines of its input that begin with what is typed, fit to stand there.\n" +
          function + "_offer() {\n";
  text += R"(  local typed=$1 plain line
  plain=${typed#[\"\']}
  plain=${plain//\\/}
  while IFS= read -r line; do
    [[ $line == "$plain"* ]] || continue
    [[ $typed == [\"\']* ]] || printf -v line %q "$line"
    COMPREPLY+=("$line")
  done
}

)";
  text += "# A word as the program would get it.\n" + function + "_plain() {\n";
  text += R"(  local word=$1
  case $word in
    \"*) word=${word#\"} word=${word%\"} ;;
    \'*) word=${word#\'} word=${word%\'} ;;
    *) word=${word//\\/} ;;
  esac
  printf %s "$word"
}

)";
  text += function + "() {\n";
  text += "  local cur=${COMP_WORDS[COMP_CWORD]}\n";
  text += ShellScan{.words = "COMP_WORDS",
                    .first = "1",
                    .last = "COMP_CWORD",
                    .unquoted = "$(" + function + "_plain \"$word\")"}
              .script(program);
  text += "  COMPREPLY=()\n  if [[ $cur == -* ]]; then\n    kind=OPTION\n  fi\n  case $kind in\n";
  text += "    OPTION) COMPREPLY=($(compgen -W \"$options\" -- \"$cur\")) ;;\n";
  text += "    COMMAND) COMPREPLY=($(compgen -W '" + commandNames(program) + "' -- \"$cur\")) ;;\n";
  for (const char* kind : {"PROJECT", "TEST", "SUITE", "REQUEST_ID", "TOOL", "CLIENT"}) {
    text += "    " + std::string(kind) + ") " + function + "_offer \"$cur\" < <(" + name + " " +
            listingOf(kind) + " 2>/dev/null) ;;\n";
  }
  text += R"(    DIR)
      compopt -o filenames
      COMPREPLY=($(compgen -d -- "$cur"))
      ;;
    ARGUMENTS)
      compopt -o filenames
      [[ $cur != @* ]] || COMPREPLY=($(compgen -f -P @ -- "${cur#@}"))
      ;;
    FILE | PROGRAM)
      compopt -o filenames
      COMPREPLY=($(compgen -f -- "$cur"))
      ;;
    *'|'*) COMPREPLY=($(compgen -W "${kind//|/ }" -- "$cur")) ;;
  esac
}

)";
  return text + "complete -F " + function + " " + name + "\n";
}

}  // namespace corvane::manual
