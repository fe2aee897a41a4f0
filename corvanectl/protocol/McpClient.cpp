#include "corvanectl/protocol/McpClient.h"

#include <algorithm>
#include <utility>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/LenientReading.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "corvane_mcp/protocol/McpRecords.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

std::string encodedMessage(std::string_view method, std::optional<JSONRPCID> id,
                           std::optional<AnyCodable> params) {
  return AgentWire::encode(JSONRPCRequest{.jsonrpc = "2.0",
                                          .id = std::move(id),
                                          .method = std::string(method),
                                          .params = std::move(params)});
}

AnyCodable::Object membersOf(AnyCodable value) {
  return std::get<AnyCodable::Object>(std::move(value.value()));
}

/// Whether `message` answers the request `id`. An error without an id is one too: the server could
/// not read what it was sent, and only one request is under way.
bool answers(const AnyCodable& message, std::int64_t id) {
  const AnyCodable* error = rawField<&JSONRPCResponse::error>(message);
  const AnyCodable* answered = rawField<&JSONRPCResponse::id>(message);
  if (!error && !rawField<&JSONRPCResponse::result>(message)) return false;
  return answered && (*answered == AnyCodable(id) || (error && answered->isNull()));
}

/// The message of the progress notification for request `id`, if it is one.
const std::string* progressMessage(const AnyCodable& message, std::int64_t id) {
  const std::string* method = findField<&JSONRPCRequest::method>(message);
  const AnyCodable* params = rawField<&JSONRPCRequest::params>(message);
  if (!method || *method != "notifications/progress" || !params) return nullptr;
  const AnyCodable* token = rawField<&ProgressParams::progressToken>(*params);
  if (!token || *token != AnyCodable(id)) return nullptr;
  return findField<&ProgressParams::message>(*params);
}

AnyCodable resultOf(AnyCodable message, const std::string& method) {
  if (const AnyCodable* error = rawField<&JSONRPCResponse::error>(message)) {
    const auto* code = findField<&JSONRPCError::code>(*error);
    const auto* text = findField<&JSONRPCError::message>(*error);
    throw RpcError(method, code ? *code : 0, text ? *text : "no reason given");
  }
  return std::move(*membersOf(std::move(message)).find(keyOf<&JSONRPCResponse::result>()));
}

const std::string& requiredText(const AnyCodable& block, std::string_view key) {
  if (const auto* text = block.findAs<std::string>(key)) return *text;
  throw ProtocolError("a block of the tool's answer has no text under '" + std::string(key) + "'");
}

ToolResult::Block blockFrom(const AnyCodable& block) {
  const std::string& type = requiredText(block, ContentBlock::tagKey);
  const auto kind = fromRawValue<ContentBlock::Kind>(type);
  if (kind == ContentBlock::Kind::text) {
    return ToolResult::Text{requiredText(block, keyOf<&ToolResult::Text::text>())};
  }
  if (kind == ContentBlock::Kind::image) {
    return ToolResult::Image{requiredText(block, keyOf<&ToolResult::Image::data>()),
                             requiredText(block, keyOf<&ToolResult::Image::mimeType>())};
  }
  return ToolResult::Other{type};
}

}  // namespace

ToolResult ToolResult::from(const AnyCodable& result) {
  const auto* blocks = findField<&ToolsCallResult::content>(result);
  if (!blocks) throw ProtocolError("the tool's answer has no list of content blocks");
  ToolResult decoded;
  decoded.content.reserve(blocks->size());
  for (const AnyCodable& block : *blocks) decoded.content.push_back(blockFrom(block));
  const auto* isError = result.findAs<bool>(keyOf<&ToolsCallResult::isError>());
  decoded.isError = isError && *isError;
  return decoded;
}

std::string_view ToolResult::firstText() const {
  const Text* first = content.empty() ? nullptr : std::get_if<Text>(&content.front());
  return first ? std::string_view(first->text) : std::string_view();
}

void McpClient::whileWaiting(Seconds interval, std::function<void()> onTick) {
  tickInterval = interval;
  tick = std::move(onTick);
}

void McpClient::initialize(Deadline deadline) {
  const InitializeParams params{.protocolVersion = "2025-03-26",
                                .capabilities = {},
                                .clientInfo = {"corvanectl", CORVANE_VERSION}};
  const AnyCodable result = request("initialize", membersOf(encodeValue(params)), deadline);
  const std::string* version = findField<&InitializeResult::protocolVersion>(result);
  if (!version || version->empty()) {
    throw ProtocolError("the server's answer to initialize names no protocol version");
  }
  server.send(encodedMessage("notifications/initialized", std::nullopt, std::nullopt));
}

AnyCodable McpClient::request(std::string_view method, AnyCodable::Object params, Deadline deadline,
                              const OnProgress& onProgress) {
  const auto begin = std::chrono::steady_clock::now();
  const std::int64_t id = ++lastId;
  if (onProgress) {
    params.set("_meta",
               AnyCodable::Object{{std::string(keyOf<&ProgressParams::progressToken>()), id}});
  }
  server.send(encodedMessage(method, JSONRPCID{id}, std::move(params)));
  while (auto message = nextMessage(method, deadline)) {
    if (answers(*message, id)) return resultOf(std::move(*message), std::string(method));
    if (const std::string* text = progressMessage(*message, id); text && onProgress) {
      onProgress(*text);
    }
  }
  const Seconds timeout = deadline - begin;
  throw NoAnswer("the server did not answer " + std::string(method) + " within " +
                 displaySeconds(timeout.count()));
}

AnyCodable McpClient::callTool(std::string_view tool, std::optional<AnyCodable::Object> arguments,
                               Deadline deadline, const OnProgress& onProgress) {
  const ToolsCallParams params{std::string(tool), std::move(arguments)};
  return request("tools/call", membersOf(encodeValue(params)), deadline, onProgress);
}

/// The next line that is a message; nothing when `deadline` comes first.
std::optional<AnyCodable> McpClient::nextMessage(std::string_view method, Deadline deadline) {
  try {
    while (const auto line = nextLine(deadline)) {
      if (auto message = parse(*line)) return message;
    }
    return std::nullopt;
  } catch (const ServerEnded& ended) {
    throw ProtocolError(std::string(ended.what()) + " before it answered " + std::string(method));
  }
}

std::optional<std::string> McpClient::nextLine(Deadline deadline) {
  while (true) {
    auto line = server.readLine(tick ? std::min(deadline, after(tickInterval)) : deadline);
    if (line || hasPassed(deadline)) return line;
    tick();
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

}  // namespace corvane::ctl
