#include <algorithm>

#include "manual/ProgramManual.h"

namespace corvane::manual {

namespace {

/// `text` with nothing in it that man(7) would take for its own.
std::string plain(std::string_view text) {
  std::string safe;
  for (const char c : text) {
    if (c == '\\') {
      safe += "\\e";
    } else if (c == '-') {
      safe += "\\-";
    } else if ((c == '.' || c == '\'') && (safe.empty() || safe.back() == '\n')) {
      safe += "\\&";
      safe += c;
    } else {
      safe += c;
    }
  }
  return safe;
}

std::string bold(std::string_view text) {
  return "\\fB" + plain(text) + "\\fR";
}
std::string italic(std::string_view text) {
  return "\\fI" + plain(text) + "\\fR";
}

std::string upperCase(std::string text) {
  std::ranges::transform(text, text.begin(),
                         [](char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; });
  return text;
}

std::string section(std::string_view title) {
  return ".SH " + std::string(title) + "\n";
}

/// Paragraphs apart, and lines that begin with blanks as they stand.
std::string paragraphs(std::string_view text) {
  std::string page;
  bool literal = false;
  bool begun = false;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.empty()) {
      if (begun && !literal && !text.empty()) page += ".PP\n";
      continue;
    }
    const bool indented = line.starts_with(' ');
    if (indented != literal) page += indented ? ".PP\n.nf\n" : ".fi\n.PP\n";
    literal = indented;
    begun = true;
    page += plain(line) + "\n";
  }
  if (literal) page += ".fi\n";
  // A heading is followed by no empty paragraph.
  return page.starts_with(".PP\n") ? page.substr(4) : page;
}

std::string optionEntry(const Option& option) {
  std::string names;
  for (const auto& name : option.names) {
    names += (names.empty() ? "" : ", ") + (option.isArgument ? italic(name) : bold(name));
  }
  if (!option.value.empty()) names += " " + italic(option.value) + (option.many ? "..." : "");
  return ".TP\n" + names + "\n" + plain(option.description) + "\n";
}

std::string commandSynopsis(const std::string& program, const Command& command) {
  std::string line = bold(program + " " + command.name);
  bool hasOptions = false;
  for (const auto& option : command.options) hasOptions = hasOptions || !option.isArgument;
  if (hasOptions) line += " [" + italic("options") + "]";
  for (const auto& option : command.options) {
    if (!option.isArgument) continue;
    line += option.required ? " " + italic(option.names.front())
                            : " [" + italic(option.names.front()) + "]";
  }
  return line;
}

std::string synopsis(const ProgramManual& program) {
  std::string page = section("SYNOPSIS");
  if (program.commands.empty()) {
    return page + bold(program.name) + " [" + italic("options") + "]\n";
  }
  for (const Command& command : program.commands) {
    if (&command != &program.commands.front()) page += ".br\n";
    page += commandSynopsis(program.name, command) + "\n";
  }
  return page;
}

std::string commandSection(const ProgramManual& program, const Command& command) {
  std::string page = ".SS " + commandSynopsis(program.name, command) + "\n";
  page += plain(command.description) + ".\n";
  for (const Option& option : command.options) page += optionEntry(option);
  if (!command.examples.empty()) page += ".PP\n.nf\n" + plain(command.examples) + ".fi\n";
  return page;
}

}  // namespace

std::string manualPage(const ProgramManual& program, const Edition& edition) {
  std::string page = ".TH " + upperCase(plain(program.name)) + " 1 " + edition.date + " \"" +
                     program.name + " " + edition.version + "\"\n";
  const std::string firstLine = program.description.substr(0, program.description.find('\n'));
  const bool dotted = firstLine.ends_with('.');
  page += section("NAME") + plain(program.name) + " \\- " +
          plain(firstLine.substr(0, firstLine.size() - (dotted ? 1 : 0))) + "\n";
  page += synopsis(program);
  page += section("DESCRIPTION") + paragraphs(program.description);
  page += section("OPTIONS");
  for (const Option& option : program.options) page += optionEntry(option);
  if (!program.commands.empty()) page += section("COMMANDS");
  for (const Command& command : program.commands) page += commandSection(program, command);
  for (const auto& [title, text] : program.sections) page += section(title) + paragraphs(text);
  return page;
}

}  // namespace corvane::manual
