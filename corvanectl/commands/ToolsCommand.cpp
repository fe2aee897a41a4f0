#include <algorithm>

#include "CorvaneCore/json/JsonWriter.h"
#include "corvanectl/commands/Commands.h"
#include "corvanectl/protocol/ProtocolError.h"
#include "corvanectl/terminal/DisplayText.h"
#include "corvanectl/terminal/FirstSentence.h"

namespace corvane {

namespace {

struct Tool {
  std::string name;
  std::string description;
  const AnyCodable* descriptor;
};

std::string textMember(const AnyCodable& object, std::string_view key) {
  const AnyCodable* value = object.find(key);
  const std::string* text = value ? value->string() : nullptr;
  return text ? *text : std::string();
}

/// The tools of a tools/list answer; they point into it.
std::vector<Tool> toolsOf(const AnyCodable& listed) {
  const AnyCodable* tools = listed.find("tools");
  if (!tools || !tools->array()) throw ProtocolError("the answer to tools/list has no tools");
  std::vector<Tool> found;
  for (const AnyCodable& tool : *tools->array()) {
    found.push_back({textMember(tool, "name"), textMember(tool, "description"), &tool});
  }
  return found;
}

/// A line for each tool, wrapped when `columns` says how wide it may be.
std::string overview(const std::vector<Tool>& tools, std::optional<std::size_t> columns) {
  std::size_t width = 0;
  for (const Tool& tool : tools) width = std::max(width, tool.name.size() + 2);
  std::string text;
  for (const Tool& tool : tools) {
    const std::string padding(width - tool.name.size(), ' ');
    const std::string sentence = oneLine(firstSentence(tool.description));
    text += oneLine(tool.name) + padding;
    text += columns ? wrapToColumns(sentence, *columns, width) : sentence;
    text += '\n';
  }
  return text;
}

std::string details(const Tool& tool) {
  const AnyCodable* schema = tool.descriptor->find("inputSchema");
  return tool.name + "\n\n" + tool.description + "\n\nArguments (JSON Schema):\n" +
         indentedJson(schema ? toJson(*schema) : "null") + "\n";
}

}  // namespace

ExitStatus execute(const ToolsCommand& command, CommandContext& context) {
  Session session(context);
  const AnyCodable listed = session.client().request("tools/list", {}, session.answerDeadline());
  const std::vector<Tool> tools = toolsOf(listed);
  if (!command.name) {
    context.console.print(command.json ? toJson(*listed.find("tools")) + "\n"
                                       : overview(tools, context.console.terminalColumns()));
    return ExitStatus::success;
  }
  const auto tool = std::find_if(tools.begin(), tools.end(),
                                 [&](const Tool& each) { return each.name == *command.name; });
  if (tool == tools.end()) {
    context.console.complain("the server has no tool named '" + *command.name +
                             "'; 'corvanectl tools' lists those it has");
    return ExitStatus::failure;
  }
  context.console.print(command.json ? toJson(*tool->descriptor) + "\n" : details(*tool));
  return ExitStatus::success;
}

}  // namespace corvane
