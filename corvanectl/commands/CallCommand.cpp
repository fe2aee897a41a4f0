#include "corvanectl/commands/CallCommand.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonFault.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/commands/ResultOutput.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view examples =
    R"(  corvanectl call describe_project '{"projectName":"Shop"}'
  corvanectl call create_test @login.json
  generate-test | corvanectl call create_test -
  corvanectl call get_result '{"requestId":"ID","includeStepTrace":true}' --pictures shots
)";

std::string readStandardInput(Interruption& interruption) {
  std::string text;
  while (true) {
    std::array<pollfd, 1> files{{{STDIN_FILENO, POLLIN, 0}}};
    interruption.wait(files, never);
    std::array<char, std::size_t{64} << 10> chunk;
    const ssize_t count = ::read(STDIN_FILENO, chunk.data(), chunk.size());
    if (count == 0) return text;
    if (count < 0 && errno != EINTR && errno != EAGAIN) {
      throw UsageError(std::string("could not read standard input: ") + std::strerror(errno));
    }
    if (count > 0) text.append(chunk.data(), static_cast<std::size_t>(count));
  }
}

std::string readSource(std::string_view source, Interruption& interruption) {
  if (source == "-") return readStandardInput(interruption);
  if (!source.starts_with('@')) return std::string(source);
  try {
    return readFile(std::filesystem::path(source.substr(1)));
  } catch (const FileError& error) {
    throw UsageError(error.what());
  }
}

/// What a message calls the source.
std::string nameOf(std::string_view source) {
  if (source == "-") return "standard input";
  if (!source.starts_with('@')) return "ARGUMENTS";
  return displayPath(std::filesystem::path(source.substr(1)));
}

/// How long a tool may wait before it answers, told by the argument that asks it to.
Seconds waitingTime(const std::optional<AnyCodable::Object>& arguments) {
  const AnyCodable* asked = arguments ? arguments->find("waitSeconds") : nullptr;
  const std::int64_t* seconds = asked ? asked->integer() : nullptr;
  return std::chrono::seconds(
      seconds ? std::clamp<std::int64_t>(*seconds, 0, AnswerTexts::longestWaitSeconds) : 0);
}

}  // namespace

AnyCodable::Object readToolArguments(std::string_view source, Interruption& interruption) {
  const std::string text = readSource(source, interruption);
  try {
    AnyCodable arguments = readJson(text);
    if (auto* object = std::get_if<AnyCodable::Object>(&arguments.value())) {
      return std::move(*object);
    }
  } catch (const DecodeError& error) {
    throw UsageError(nameOf(source) + ", " + describePlace(text, faultIn(text, error)) + ": " +
                     error.what());
  }
  throw UsageError(
      nameOf(source) +
      " must hold a JSON object, like {\"projectName\":\"Shop\"}; it holds another value");
}

ExitStatus callAndPrint(ToolCall call, Session& session, CommandContext& context) {
  const Seconds waiting = waitingTime(call.arguments);
  const AnyCodable answer = session.callTool(call.tool, std::move(call.arguments), waiting);
  const ToolResult result = ToolResult::from(answer);
  if (call.json) {
    context.console.print(toJson(answer) + "\n");
  } else {
    ResultOutput(context.console, call.tool, call.pictures, &context.pictureViewer).print(result);
  }
  return exitStatusOf(result);
}

Command::About CallCommand::about() const {
  return {"call", "Call a tool and print its answer", examples};
}

void CallCommand::addOptions(CLI::App& app) {
  app.add_option("TOOL", tool, "The tool's name")->type_name("")->required();
  auto* source = app.add_option("ARGUMENTS", arguments,
                                "A JSON object, @FILE to read it from a file, or - to read it from "
                                "standard input (default: {})");
  source->type_name("");
  app.add_flag("--no-arguments", withoutArguments, "Send no arguments at all")->excludes(source);
  addPictures(app, pictures);
  addJson(app, json, "Print the tool's result as JSON");
}

ExitStatus CallCommand::execute(CommandContext& context) const {
  ToolCall call{.tool = tool, .arguments = {}, .json = json, .pictures = pictures};
  if (!withoutArguments) call.arguments = readToolArguments(arguments, context.interruption);
  Session session(context);
  return callAndPrint(std::move(call), session, context);
}

}  // namespace corvane::ctl
