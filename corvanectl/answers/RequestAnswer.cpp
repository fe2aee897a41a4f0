#include "corvanectl/answers/RequestAnswer.h"

#include <iterator>
#include <utility>

#include "CorvaneCore/json/AgentWire.h"
#include "corvanectl/answers/ToolRefusal.h"

namespace corvane::ctl {

namespace {

std::optional<AgentRunResult> readResult(std::string_view json) {
  try {
    return AgentWire::decode<AgentRunResult>(json);
  } catch (const DecodeError&) {
    return std::nullopt;
  }
}

}  // namespace

RequestAnswer askRequest(Session& session, const std::string& id,
                         const std::optional<PictureChoice>& pictures) {
  AnyCodable::Object arguments{{"requestId", id}};
  if (pictures) {
    arguments.set("includeStepTrace", true);
    if (pictures->test) arguments.set("traceTestIndex", *pictures->test);
    if (pictures->step) arguments.set("traceStepIndex", *pictures->step);
  }
  ToolResult told = ask(session, "get_result", std::move(arguments));
  const auto read = AnswerTexts::readResultAnswer(told.firstText());
  if (!read) throw ProtocolError("the answer of get_result does not begin with a status");
  RequestAnswer answer{.status = read->status,
                       .standing = read->standing,
                       .json = std::string(read->result),
                       .result = readResult(read->result),
                       .further = {}};
  answer.further.assign(std::make_move_iterator(std::next(told.content.begin())),
                        std::make_move_iterator(told.content.end()));
  return answer;
}

}  // namespace corvane::ctl
