#include "corvane_mcp/server/MCPServer.h"

#include <memory>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/LenientReading.h"
#include "corvane_mcp/protocol/McpRecords.h"

namespace corvane {

namespace {

constexpr std::string_view toolsCallMethod = "tools/call";
constexpr std::string_view defaultProtocolVersion = "2025-03-26";

std::string describeId(const std::optional<JSONRPCID>& id) {
  if (!id) return "notification";
  if (const auto* text = std::get_if<std::string>(&id->value)) return "\"" + *text + "\"";
  return std::to_string(std::get<std::int64_t>(id->value));
}

/// The progress token of a call's params; null is a token too.
std::optional<AnyCodable> progressToken(const AnyCodable& params) {
  const AnyCodable* meta = params.find("_meta");
  const AnyCodable* token = meta ? rawField<&ProgressParams::progressToken>(*meta) : nullptr;
  return token ? std::optional(*token) : std::nullopt;
}

}  // namespace

MCPServer::FailureTexts MCPServer::toolsCallFailure() {
  return {"tools/call notification raised error (no response sent): ",
          "Unhandled error in tools/call: "};
}

void MCPServer::run(LineReader& input) {
  parts.logger.info("corvane-mcp starting (" + parts.serverInfo.name + " v" +
                    parts.serverInfo.version + ")");
  Leadership readers([&] { lead(input, readers); });
  readers.run();
  tasks.waitUntilIdle();
  parts.logger.info("stdin closed; exiting");
}

void MCPServer::lead(LineReader& input, Leadership& readers) {
  do {
    while (const auto line = input.nextBuffered()) {
      if (line->tooLong) {
        replyToUnreadable("the line is longer than " + std::to_string(LineReader::longestLine) +
                          " bytes");
      } else if (!line->text.empty() && handleLine(line->text, readers) == Reader::another) {
        return;
      }
    }
    parts.writer.flush();
  } while (input.readMore());
  if (const std::size_t count = tasks.inFlight(); count > 0) {
    parts.logger.info("stdin closed; draining " + std::to_string(count) +
                      " in-flight tool call(s)");
  }
  readers.end();
}

MCPServer::Reader MCPServer::handleLine(std::string_view line, Leadership& readers) {
  RequestLine read;
  try {
    read = readRequestLine(line, reader);
  } catch (const std::exception& error) {
    replyToUnreadable(error.what());
    return Reader::thisThread;
  }
  const JSONRPCRequest& request = read.request;
  parts.logger.info("→ " + request.method + " (id=" + describeId(request.id) + ")");
  if (request.method == toolsCallMethod) return handleToolsCall(std::move(read), readers);
  try {
    AnyCodable result = dispatch(request);
    if (request.id) {
      send(JSONRPCResponse::success(*request.id, std::move(result)), Delivery::together);
    }
  } catch (...) {
    replyWithFailure(request.id, std::current_exception(),
                     {"Notification " + request.method + " raised error (no response sent): ",
                      "Unhandled error in " + request.method + ": "},
                     Delivery::together);
  }
  return Reader::thisThread;
}

AnyCodable MCPServer::dispatch(const JSONRPCRequest& request) {
  const std::string& method = request.method;
  if (method == "initialize") return encodeValue(handleInitialize(request.params));
  if (method == "tools/list") return encodeValue(parts.registry.descriptors());
  if (method == "ping" || method == "notifications/initialized") return AnyCodable::Object();
  if (method == "shutdown") {
    parts.logger.info("Received shutdown");
    return AnyCodable::Object();
  }
  throw JSONRPCError(JSONRPCError::methodNotFound, "Method not found: " + method);
}

InitializeResult MCPServer::handleInitialize(const std::optional<AnyCodable>& params) {
  const AnyCodable given = params.value_or(AnyCodable());
  const auto* clientInfo = findField<&InitializeParams::clientInfo>(given);
  if (const auto* name = clientInfo ? findField<&ServerInfo::name>(*clientInfo) : nullptr) {
    parts.client.setName(*name);
    parts.logger.info("Client identified: " + *name);
  }
  const auto* requested = findField<&InitializeParams::protocolVersion>(given);
  const std::string answered = requested ? *requested : std::string(defaultProtocolVersion);
  parts.logger.info("initialize: protocolVersion requested=" + (requested ? *requested : "<none>") +
                    " → responding " + answered);
  return {answered, {ToolsCapability{}}, parts.serverInfo};
}

MCPServer::Reader MCPServer::handleToolsCall(RequestLine line, Leadership& readers) {
  const std::optional<JSONRPCID> id = line.request.id;
  try {
    return start(readToolsCall(std::move(line)), readers);
  } catch (...) {
    replyWithFailure(id, std::current_exception(), toolsCallFailure(), Delivery::together);
    return Reader::thisThread;
  }
}

MCPServer::Call MCPServer::readToolsCall(RequestLine line) {
  auto& params = line.request.params;
  if (!params) throw JSONRPCError(JSONRPCError::invalidParams, "tools/call requires params");
  ToolCall sent;
  if (auto token = progressToken(*params)) sent.progress.emplace(parts.writer, std::move(*token));
  ToolsCallParams decoded;
  try {
    decoded = decodeValue<ToolsCallParams>(std::move(*params), "params");
  } catch (const DecodeError& error) {
    throw JSONRPCError(JSONRPCError::invalidParams,
                       std::string("tools/call params malformed: ") + error.what());
  }
  sent.arguments = std::move(line.arguments);
  parts.logger.info("tools/call " + decoded.name + ": progressToken " +
                    (sent.progress ? "present" : "ABSENT"));
  return {std::move(line.request.id), parts.registry.find(decoded.name), std::move(sent),
          tasks.count()};
}

MCPServer::Reader MCPServer::start(Call call, Leadership& readers) {
  std::optional<DispatchOrder::Turn> turn;
  if (!call.tool.dispatches()) {
    turn.emplace();
  } else if (!(turn = dispatchOrder.tryEnter())) {
    const auto waiting = std::make_shared<Call>(std::move(call));
    dispatchOrder.enter([this, waiting](DispatchOrder::Turn entered) {
      performOnPool(std::move(*waiting), std::move(entered));
    });
    return Reader::thisThread;
  }
  const auto absence = call.tool.waits() ? std::nullopt : readers.beginAbsence();
  if (!absence) {
    performOnPool(std::move(call), std::move(*turn));
    return Reader::thisThread;
  }
  perform(call, std::move(*turn));
  return readers.endAbsence(*absence) ? Reader::thisThread : Reader::another;
}

void MCPServer::performOnPool(Call call, DispatchOrder::Turn turn) {
  const std::optional<JSONRPCID> id = call.id;
  try {
    tasks.start(performAsTask(std::move(call), std::move(turn)));
  } catch (...) {
    replyWithFailure(id, std::current_exception(), toolsCallFailure(), Delivery::now);
  }
}

void MCPServer::perform(Call& call, DispatchOrder::Turn turn) {
  try {
    reply(call.id, call.tool.perform(std::move(call.sent), std::move(turn)));
  } catch (...) {
    replyWithFailure(call.id, std::current_exception(), toolsCallFailure(), Delivery::now);
  }
}

Task<void> MCPServer::performAsTask(Call call, DispatchOrder::Turn turn) {
  std::exception_ptr failure;
  try {
    reply(call.id, co_await call.tool.call(std::move(call.sent), std::move(turn)));
  } catch (...) {
    failure = std::current_exception();
  }
  if (failure) replyWithFailure(call.id, failure, toolsCallFailure(), Delivery::now);
}

void MCPServer::reply(const std::optional<JSONRPCID>& id, ToolsCallResult result) {
  if (!id) return;
  send(JSONRPCResponseWith<ToolsCallResult>::success(*id, std::move(result)), Delivery::now);
}

void MCPServer::replyToUnreadable(std::string_view description) {
  parts.logger.error(std::string("Parse error: ").append(description));
  send(JSONRPCResponse::failure({},
                                JSONRPCError(JSONRPCError::parseError, std::string(description))),
       Delivery::together);
}

void MCPServer::replyWithFailure(const std::optional<JSONRPCID>& id,
                                 const std::exception_ptr& failure, const FailureTexts& texts,
                                 Delivery delivery) {
  JSONRPCError error;
  try {
    std::rethrow_exception(failure);
  } catch (const JSONRPCError& protocolError) {
    error = protocolError;
    if (!id) parts.logger.warn(texts.unanswered + error.message);
  } catch (const std::exception& unexpected) {
    error = JSONRPCError(JSONRPCError::internalError, unexpected.what());
    parts.logger.error(texts.unhandled + error.message);
  }
  if (id) send(JSONRPCResponse::failure(*id, std::move(error)), delivery);
}

template <class Result>
void MCPServer::send(const JSONRPCResponseWith<Result>& response, Delivery delivery) {
  try {
    if (delivery == Delivery::now) {
      // Only texts are ever large, and a text can always be encoded: nothing is broken off.
      parts.writer.sendWhileEncoding([&response](JsonSink& sink) {
        Codec<JSONRPCResponseWith<Result>>::encode(response, sink);
      });
    } else {
      parts.writer.queue(AgentWire::encode(response));
    }
  } catch (const std::exception& error) {
    parts.logger.error(std::string("Failed to encode response: ") + error.what());
  }
}

}  // namespace corvane
