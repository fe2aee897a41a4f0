#include "corvanectl/commands/TryCommand.h"

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/terminal/ShellWord.h"
#include "corvanectl/trial/StandIn.h"
#include "corvanectl/trial/TrialServers.h"

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;

/// How to call this command again for the same home, with an option.
std::string again(const std::optional<fs::path>& home, const std::string& option) {
  return "corvanectl try " + option +
         (home ? " --home " + typedWord(displayPath(fs::absolute(*home))) : std::string());
}

constexpr std::string_view guide = R"(
Its server, for your agent:
  corvanectl setup --name corvane-trial --server <server>
or, in Claude Code:
  claude mcp add corvane-trial -- <server>
or, pasted into the configuration of another client:
  {"mcpServers":{"corvane-trial":{"command":<json>}}}

Then ask it:
  What is in my Corvane workspace?
  Run the test "Redeem a voucher" of Corner Shop. Why does it fail? Show me the screen.
  Explore Corner Shop: add an address, then leave a review of a product.

Or look yourself:
  corvanectl --server <server> run "Corner Shop" --test "Redeem a voucher" --follow

When you are done: <stop>
From the beginning: <reset>
)";

void replaceAll(std::string& text, std::string_view name, const std::string& value) {
  for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += value.size()) {
    text.replace(at, name.size(), value);
  }
}

/// What to do next.
std::string nextSteps(const TrialHome& home, const std::optional<fs::path>& named) {
  const std::string server = displayPath(home.server());
  std::string steps(guide);
  replaceAll(steps, "<server>", typedWord(server));
  replaceAll(steps, "<json>", toJson(server));
  replaceAll(steps, "<stop>", again(named, "--stop"));
  replaceAll(steps, "<reset>", again(named, "--reset"));
  return steps;
}

/// Makes the home, has the stand-in run in it, and says so.
std::string start(const TrialHome& home, CommandContext& context, Deadline deadline) {
  const auto& named = context.options.server;
  const fs::path server = locateServer(named, executablePath(), searchPath());
  if (!isProgram(server)) throw UsageError(displayPath(server) + " is no program");
  home.prepare({.corvanectl = lastingPath(executablePath(), searchPath()),
                .server = named ? std::optional(fs::absolute(server)) : std::nullopt,
                .standIn = locateStandIn(executablePath())});
  home.enter();
  const bool isNew = startStandIn(home, context.interruption, deadline);
  return std::string("The trial runs") + (isNew ? "" : " already") +
         ": a stand-in for Corvane.app with two sample projects.\nIts home is " +
         displayPath(home.folder()) + "\n";
}

}  // namespace

Command::About TryCommand::about() const {
  return {"try",
          "Try everything without Corvane.app: a stand-in with sample projects, in a home of "
          "its own",
          "  corvanectl try\n"
          "  corvanectl try --stop\n"
          "  corvanectl try --reset\n"};
}

void TryCommand::addOptions(CLI::App& app) {
  app.add_option("--home", home, "The trial's own folder (default: one that is kept for it)")
      ->type_name("DIR")
      ->check(named("a folder"));
  app.add_flag("--stop", stop, "End the trial; its workspace stays for the next time");
  app.add_flag("--reset", reset,
               "Forget all that was done in it; with --stop leave nothing behind");
  app.add_flag("--serve", serve, "Be the trial's server, as its program corvane-mcp is");
}

void TryCommand::check() const {
  if (serve && (stop || reset)) {
    throw CLI::ValidationError("--serve goes with neither --stop nor --reset");
  }
}

ExitStatus TryCommand::execute(CommandContext& context) const {
  const TrialHome trial(fs::absolute(home.value_or(TrialHome::usual())).lexically_normal());
  const Deadline deadline =
      after(context.options.timeout ? Seconds(*context.options.timeout) : context.usualTimeout);
  try {
    if (serve) {
      startStandInApart(trial, context.options.server, context.interruption);
      trial.enter();
      becomeServer(trial, locateServer(context.options.server, executablePath(), searchPath()));
    }
    const bool wasThere = trial.exists();
    if (wasThere && (stop || reset)) {
      stopServers(trial, context.interruption, deadline);
      stopStandIn(trial, context.interruption, deadline);
    }
    if (wasThere && reset) trial.remove();
    if (stop) {
      context.console.print((wasThere ? "The trial has ended: " : "There is no trial: ") +
                            displayPath(trial.folder()) + "\n");
      return ExitStatus::success;
    }
    context.console.print(start(trial, context, deadline) + nextSteps(trial, home));
    return ExitStatus::success;
  } catch (const TrialFault& fault) {
    context.console.complain(fault.what());
    return ExitStatus::noApp;
  }
}

}  // namespace corvane::ctl
