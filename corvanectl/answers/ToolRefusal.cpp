#include "corvanectl/answers/ToolRefusal.h"

#include <utility>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/results/AnswerTexts.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view errorLabel = "error:";

/// What follows the line that names the error, where there is one.
std::string explanation(std::string_view answer) {
  const std::size_t gap = answer.find("\n\n");
  if (answer.starts_with(errorLabel) && gap != std::string_view::npos) {
    answer.remove_prefix(gap + 2);
  }
  return std::string(answer);
}

}  // namespace

ToolRefusal::ToolRefusal(std::string_view answer) : std::runtime_error(explanation(answer)) {
  if (!answer.starts_with(errorLabel)) return;
  answer.remove_prefix(errorLabel.size());
  code = answer.substr(0, answer.find_first_of(" \n"));
}

ToolResult ask(Session& session, std::string_view tool, AnyCodable::Object arguments) {
  ToolResult result = ToolResult::from(session.callTool(tool, std::move(arguments)));
  if (result.isError) throw ToolRefusal(result.firstText());
  return result;
}

AnyCodable::Object snapshotOf(const ToolResult& answer, std::string_view tool) {
  try {
    AnyCodable snapshot = readJson(AnswerTexts::snapshotIn(answer.firstText()));
    if (auto* object = std::get_if<AnyCodable::Object>(&snapshot.value())) {
      return std::move(*object);
    }
  } catch (const DecodeError&) {
    // Told below.
  }
  throw ProtocolError("the answer of " + std::string(tool) + " does not end with a JSON object");
}

}  // namespace corvane::ctl
