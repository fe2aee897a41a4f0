#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// What the server says to a person who starts it by hand. It has two options and no use for a
/// library that reads them: every client waits for its start.
namespace ProgramHelp {

struct Option {
  std::string_view name;
  std::string_view description;
};

inline constexpr std::array options{
    Option{"--help", "Print what this program is and end"},
    Option{"--version", "Print the version and end"},
};

/// What the program is, in paragraphs of one line each.
inline constexpr std::array<std::string_view, 2> description{
    "A server of the Model Context Protocol through which agents write and run tests in "
    "Corvane.app.",
    "An MCP client starts it and talks to it on standard input and output; it ends when its input "
    "does. It writes its log to standard error and to ~/Library/Logs/Corvane/mcp.log.",
};

/// What to do instead of starting it on a terminal.
inline constexpr std::string_view advice =
    "Name this program as a server in the settings of your MCP client, or use the same tools from "
    "a terminal with corvanectl.";

/// The answer to the program's one argument, for standard output; nothing for an argument that asks
/// for none.
[[nodiscard]] std::optional<std::string> answerTo(std::string_view argument);

/// What the program says on standard error when it is started on a terminal, where nobody speaks
/// the protocol.
[[nodiscard]] std::string wordsOnTerminal();

}  // namespace ProgramHelp

}  // namespace corvane
