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

/// How many of the words behind `word` it takes at most: none unless it is an option, of whichever
/// command.
int mostValues(const std::string& word, const CLI::App& app) {
  if (!word.starts_with("--")) return 0;
  if (const auto* option = app.get_option_no_throw(word)) return option->get_items_expected_max();
  int most = 0;
  for (const CLI::App* command : app.get_subcommands(nullptr)) {
    most = std::max(most, mostValues(word, *command));
  }
  return most;
}

/// Puts the command first, wherever it stands, for its options to be known in front of it, too.
void putCommandFirst(Words& words, const CommandLineDefinition& definition) {
  const Words commands = definition.commandNames();
  for (auto word = words.begin(); word != words.end(); ++word) {
    const bool isValue = word != words.begin() && mostValues(*std::prev(word), definition.app) > 0;
    if (isValue || !contains(commands, *word)) continue;
    std::rotate(words.begin(), word, std::next(word));
    return;
  }
}

/// Puts the word that stands for itself, such as a project, behind the command when an option that
/// takes any number of values would take it as one more: that is the last of these values, unless
/// another word stands for itself. `--param` takes none without an equals sign.
void putArgumentFirst(Words& words, const CommandLineDefinition& definition) {
  if (words.empty()) return;
  const auto commands = definition.app.get_subcommands([&](const CLI::App* command) {
    return command->get_name() == words.front() && command->get_option_no_throw("--param");
  });
  if (commands.empty()) return;
  const bool isRequired = commands.front()->get_option_no_throw("PROJECT") != nullptr;
  auto candidate = words.end();
  std::string option;
  int taken = 0;
  for (auto word = std::next(words.begin()); word != words.end(); ++word) {
    if (word->starts_with("--")) {
      option = *word;
      taken = 0;
      continue;
    }
    const bool fits = option == "--param" ? word->find('=') != std::string::npos : !isRequired;
    const int most = mostValues(option, definition.app);
    if (taken++ >= most) return;
    if (most > 1 && taken > 1 && !fits) candidate = word;
  }
  if (candidate != words.end()) std::rotate(std::next(words.begin()), candidate, candidate + 1);
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
    putArgumentFirst(words, definition);
    for (std::string& word : words) word = withGuard(std::move(word));
    // CLI11 takes them from the back.
    Words reversed(words.rbegin(), words.rend());
    try {
      parse(std::move(reversed), words);
      if (definition.helpCommand->parsed()) return CommandLineReply{help()};
      std::unique_ptr<Command> command = chosen();
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
  /// What is unknown comes before what is missing.
  void parse(Words reversed, const Words& words) {
    try {
      definition.app.parse(std::move(reversed));
    } catch (const CLI::RequiredError&) {
      refuseUnknown(words);
      throw;
    }
    refuseUnknown(words);
  }

  std::unique_ptr<Command> chosen() {
    for (auto& command : definition.commands) {
      if (definition.app.got_subcommand(std::string(command->about().name))) {
        return std::move(command);
      }
    }
    throw CLI::RequiredError("A command ('corvanectl help' lists them)");
  }

  void refuseUnknown(const Words& words) const {
    const Words unknown = definition.app.remaining(true);
    const auto first = std::find_if(words.begin(), words.end(), [&](const std::string& word) {
      return contains(unknown, word);
    });
    if (first != words.end()) refuse(withoutGuard(*first));
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
