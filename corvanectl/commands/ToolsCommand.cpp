#include "corvanectl/commands/ToolsCommand.h"

#include <algorithm>

#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/text/NearestName.h"
#include "corvane_mcp/protocol/McpRecords.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/commands/Session.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view examples =
    R"(  corvanectl tools                      what the server can do
  corvanectl tools run_test             one tool with its arguments
  corvanectl tools --json
)";

struct Tool {
  /// What is known of it; a member that the server left out or made something else is empty.
  ToolDescriptor known;
  /// The same as the server gave it.
  const AnyCodable* given;
};

/// The tools of a tools/list answer; they point into it.
std::vector<Tool> toolsOf(const AnyCodable& listed) {
  const auto* descriptors = findField<&ToolsListResult::tools>(listed);
  if (!descriptors) throw ProtocolError("the answer to tools/list has no tools");
  std::vector<Tool> tools;
  for (const AnyCodable& descriptor : *descriptors) {
    Tool& tool = tools.emplace_back(Tool{{}, &descriptor});
    if (!descriptor.object()) continue;
    AnyCodable::Object members = *descriptor.object();
    takeFieldsExcept<>(members, tool.known);
  }
  return tools;
}

/// A line for each tool, wrapped when `columns` says how wide it may be.
std::string overview(const std::vector<Tool>& tools, std::optional<std::size_t> columns) {
  std::size_t width = 0;
  for (const Tool& tool : tools) width = std::max(width, tool.known.name.size() + 2);
  std::string text;
  for (const Tool& tool : tools) {
    const std::string padding(width - tool.known.name.size(), ' ');
    const std::string sentence = oneLine(firstSentence(tool.known.description));
    text += oneLine(tool.known.name) + padding;
    text += columns ? wrapToColumns(sentence, *columns, width) : sentence;
    text += '\n';
  }
  return text;
}

std::string details(const Tool& tool) {
  return tool.known.name + "\n\n" + tool.known.description + "\n\nArguments (JSON Schema):\n" +
         indentedJson(toJson(tool.known.inputSchema)) + "\n";
}

/// How wide the terminal is that is standard output; nothing when it is no terminal.
std::optional<std::size_t> terminalColumns(const Console& console) {
  const TextStream& output = console.standardOutput();
  return output.isTerminal() ? std::optional(output.size().columns) : std::nullopt;
}

}  // namespace

Command::About ToolsCommand::about() const {
  return {"tools", "List the server's tools, or show one of them", examples};
}

void ToolsCommand::addOptions(CLI::App& app) {
  app.add_option("TOOL", name, "The tool to show")->type_name("");
  addJson(app, json, "Print what the server says of them, as JSON");
}

ExitStatus ToolsCommand::execute(CommandContext& context) const {
  Session session(context);
  const AnyCodable listed = session.client().request("tools/list", {}, session.answerDeadline());
  const std::vector<Tool> tools = toolsOf(listed);
  if (!name) {
    context.console.print(json ? toJson(*rawField<&ToolsListResult::tools>(listed)) + "\n"
                               : overview(tools, terminalColumns(context.console)));
    return ExitStatus::success;
  }
  const auto tool = std::find_if(tools.begin(), tools.end(),
                                 [&](const Tool& each) { return each.known.name == *name; });
  if (tool == tools.end()) {
    std::vector<std::string> names;
    for (const Tool& each : tools) names.push_back(each.known.name);
    context.console.complain("the server has no tool named '" + *name + "'." +
                             didYouMean(*name, names) + " 'corvanectl tools' lists those it has");
    return ExitStatus::failure;
  }
  context.console.print(json ? toJson(*tool->given) + "\n" : details(*tool));
  return ExitStatus::success;
}

}  // namespace corvane::ctl
