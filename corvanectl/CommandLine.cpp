#include "corvanectl/CommandLine.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "CorvaneCore/text/NearestName.h"
#include "corvanectl/CommandLineDefinition.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

using Words = std::vector<std::string>;

bool contains(const Words& words, const std::string& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

/// Whether `word` is an option, of whichever command, that takes the word behind it.
bool takesValue(const std::string& word, const CLI::App& app) {
  if (!word.starts_with("--")) return false;
  const auto* option = app.get_option_no_throw(word);
  if (option) return option->get_items_expected_max() > 0;
  const auto commands = app.get_subcommands(nullptr);
  return std::any_of(commands.begin(), commands.end(),
                     [&](const CLI::App* command) { return takesValue(word, *command); });
}

/// Puts the command first, wherever it stands, for its options to be known in front of it, too.
void putCommandFirst(Words& words, const CommandLineDefinition& definition) {
  const Words commands = definition.commandNames();
  for (auto word = words.begin(); word != words.end(); ++word) {
    const bool isValue = word != words.begin() && takesValue(*std::prev(word), definition.app);
    if (isValue || !contains(commands, *word)) continue;
    std::rotate(words.begin(), word, std::next(word));
    return;
  }
}

Words optionNames(const CLI::App& app) {
  Words names;
  for (const CLI::Option* option : app.get_options()) {
    if (!option->get_lnames().empty()) names.push_back("--" + option->get_lnames().front());
  }
  return names;
}

/// Reads a command line and chooses the command.
class CommandLine {
 public:
  std::variant<Invocation, CommandLineReply> parse(int argc, const char* const* argv) {
    Words words(argv + std::min(argc, 1), argv + argc);
    putCommandFirst(words, definition);
    for (std::string& word : words) word = withGuard(std::move(word));
    // CLI11 takes them from the back.
    Words reversed(words.rbegin(), words.rend());
    try {
      definition.app.parse(std::move(reversed));
      if (definition.helpCommand->parsed()) return CommandLineReply{help()};
      std::unique_ptr<Command> command = chosen(words);
      command->check();
      return Invocation{definition.server, std::move(command)};
    } catch (const CLI::ParseError& error) {
      std::ostringstream text;
      const bool asked = definition.app.exit(error, text, text) == 0;
      if (asked) return CommandLineReply{text.str(), ExitStatus::success};
      return CommandLineReply{"corvanectl: " + text.str(), ExitStatus::usage};
    }
  }

 private:
  /// Beside an option group, which could say the same, CLI11 takes a project's name that comes last
  /// for one more test.
  std::unique_ptr<Command> chosen(const Words& words) {
    const Words unknown = definition.app.remaining(true);
    const auto first = std::find_if(words.begin(), words.end(), [&](const std::string& word) {
      return contains(unknown, word);
    });
    if (first != words.end()) refuse(withoutGuard(*first));
    for (auto& command : definition.commands) {
      if (definition.app.got_subcommand(std::string(command->about().name))) {
        return std::move(command);
      }
    }
    throw CLI::RequiredError("A command ('corvanectl help' lists them)");
  }

  [[noreturn]] void refuse(const std::string& word) const {
    const auto parsed = definition.app.get_subcommands();
    const bool isOption = word.starts_with("-") && word != "-";
    if (parsed.empty() && !isOption) refuseCommand(word);

    const std::string name = parsed.empty() ? "" : parsed.front()->get_name();
    const std::string whole = name.empty() ? "corvanectl" : "'" + name + "'";
    if (!isOption)
      throw CLI::ValidationError(whole + " takes no further argument: '" + oneLine(word) + "'");
    Words known = optionNames(definition.app);
    if (!name.empty()) std::ranges::move(optionNames(*parsed.front()), std::back_inserter(known));
    throw CLI::ValidationError(whole + " has no option '" + oneLine(word) + "'." +
                               didYouMean(word.substr(0, word.find('=')), known) +
                               " 'corvanectl help" + (name.empty() ? "" : " " + name) +
                               "' lists those it has");
  }

  [[noreturn]] void refuseCommand(const std::string& word) const {
    throw CLI::ValidationError("there is no command '" + oneLine(word) + "'." +
                               didYouMean(word, definition.shownCommandNames()) +
                               " 'corvanectl help' lists them");
  }

  std::string help() const {
    // A line that has been read helps with the command on it.
    const CommandLineDefinition fresh;
    if (!definition.helpTopic) return fresh.app.help();
    if (!contains(definition.shownCommandNames(), *definition.helpTopic)) {
      refuseCommand(*definition.helpTopic);
    }
    return fresh.app.get_subcommand(*definition.helpTopic)->help("corvanectl");
  }

  CommandLineDefinition definition;
};

}  // namespace

std::variant<Invocation, CommandLineReply> parseCommandLine(int argc, const char* const* argv) {
  return CommandLine().parse(argc, argv);
}

}  // namespace corvane::ctl
