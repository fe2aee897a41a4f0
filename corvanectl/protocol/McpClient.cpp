#include "corvanectl/protocol/McpClient.h"

#include <utility>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "corvanectl/protocol/ProtocolError.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane {

namespace {

constexpr std::string_view protocolVersion = "2025-03-26";

std::string textOr(const AnyCodable* value, std::string_view otherwise) {
  const std::string* text = value ? value->string() : nullptr;
  return text ? *text : std::string(otherwise);
}

std::int64_t integerOr(const AnyCodable* value, std::int64_t otherwise) {
  const std::int64_t* integer = value ? value->integer() : nullptr;
  return integer ? *integer : otherwise;
}

/// Whether `message` answers the request `id`. An error without an id is one too: the server could
/// not read what it was sent, and only one request is under way.
bool answers(const AnyCodable& message, std::int64_t id) {
  const AnyCodable* error = message.find("error");
  const AnyCodable* answered = message.find("id");
  if (!error && !message.find("result")) return false;
  return answered && (*answered == AnyCodable(id) || (error && answered->isNull()));
}

/// The message of the progress notification for request `id`, if it is one.
const std::string* progressMessage(const AnyCodable& message, std::int64_t id) {
  if (textOr(message.find("method"), "") != "notifications/progress") return nullptr;
  const AnyCodable* params = message.find("params");
  const AnyCodable* token = params ? params->find("progressToken") : nullptr;
  const AnyCodable* text = params ? params->find("message") : nullptr;
  return token && *token == AnyCodable(id) && text ? text->string() : nullptr;
}

AnyCodable resultOf(AnyCodable message, const std::string& method) {
  if (const AnyCodable* error = message.find("error")) {
    throw RpcError(method, integerOr(error->find("code"), 0),
                   textOr(error->find("message"), "no reason given"));
  }
  auto& members = std::get<AnyCodable::Object>(message.value());
  return std::move(*members.find("result"));
}

}  // namespace

void McpClient::initialize(Deadline deadline) {
  const AnyCodable result = request(
      "initialize",
      {{"protocolVersion", protocolVersion},
       {"capabilities", AnyCodable::Object()},
       {"clientInfo", AnyCodable::Object{{"name", "corvanectl"}, {"version", CORVANECTL_VERSION}}}},
      deadline);
  if (textOr(result.find("protocolVersion"), "").empty()) {
    throw ProtocolError("the server's answer to initialize names no protocol version");
  }
  notify("notifications/initialized");
}

AnyCodable McpClient::request(std::string_view method, AnyCodable::Object params, Deadline deadline,
                              const OnProgress& onProgress) {
  const auto begin = std::chrono::steady_clock::now();
  const std::int64_t id = ++lastId;
  if (onProgress) params.set("_meta", AnyCodable::Object{{"progressToken", id}});
  server.send(toJson(AnyCodable::Object{
      {"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", std::move(params)}}));
  while (auto message = nextMessage(method, deadline)) {
    if (answers(*message, id)) return resultOf(std::move(*message), std::string(method));
    if (const std::string* text = progressMessage(*message, id); text && onProgress) {
      onProgress(*text);
    }
  }
  const Seconds patience = deadline - begin;
  throw NoAnswer("the server did not answer " + std::string(method) + " within " +
                 displaySeconds(patience.count()));
}

AnyCodable McpClient::callTool(std::string_view tool, std::optional<AnyCodable::Object> arguments,
                               Deadline deadline, const OnProgress& onProgress) {
  AnyCodable::Object params{{"name", tool}};
  if (arguments) params.set("arguments", std::move(*arguments));
  return request("tools/call", std::move(params), deadline, onProgress);
}

void McpClient::notify(std::string_view method) {
  server.send(toJson(AnyCodable::Object{{"jsonrpc", "2.0"}, {"method", method}}));
}

/// The next line that is a message; nothing when `deadline` comes first.
std::optional<AnyCodable> McpClient::nextMessage(std::string_view method, Deadline deadline) {
  try {
    while (const auto line = server.readLine(deadline)) {
      if (auto message = parse(*line)) return message;
    }
    return std::nullopt;
  } catch (const ServerEnded& ended) {
    throw ProtocolError(std::string(ended.what()) + " before it answered " + std::string(method));
  }
}

std::optional<AnyCodable> McpClient::parse(const std::string& line) {
  try {
    AnyCodable message = reader.read(line);
    if (message.object()) return message;
  } catch (const DecodeError&) {
    // Reported below, like any other line that is no message.
  }
  const std::string shown = oneLine(line);
  if (shown.empty() || std::exchange(warned, true)) return std::nullopt;
  constexpr std::size_t shownColumns = 200;
  warn("passing over what is no message on the server's standard output: " +
       cutToColumns(shown, shownColumns));
  return std::nullopt;
}

}  // namespace corvane
