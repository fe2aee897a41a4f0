#include "corvane_mcp/protocol/RequestLine.h"

#include "CorvaneCore/json/LenientReading.h"
#include "corvane_mcp/protocol/McpRecords.h"

namespace corvane {

namespace {

/// Takes the value at the cursor and, when it is an object, its member `key` by `take`.
template <class Take>
AnyCodable readWith(JsonCursor& cursor, std::string_view key, Take take) {
  if (!cursor.atObject()) return cursor.read();
  std::vector<JsonObject::Member> members;
  cursor.members([&](std::string_view next) {
    if (next == key) return take(members);
    members.push_back({std::string(next), {}});
    members.back().value = cursor.read();
  });
  return JsonObject(std::move(members));
}

}  // namespace

RequestLine readRequestLine(std::string_view line, JsonReader& reader) {
  constexpr auto paramsKey = keyOf<&JSONRPCRequest::params>();
  std::optional<std::string> arguments;
  AnyCodable message;
  reader.read(line, [&](JsonCursor& cursor) {
    message = readWith(cursor, paramsKey, [&](auto& members) {
      // Of members of one name the last counts, with all that is in it.
      arguments.reset();
      AnyCodable params = readWith(cursor, keyOf<&ToolsCallParams::arguments>(), [&](const auto&) {
        const std::size_t begin = cursor.position();
        cursor.skip();
        arguments.emplace(line.substr(begin, cursor.position() - begin));
      });
      members.push_back({std::string(paramsKey), std::move(params)});
    });
  });
  return {decodeValue<JSONRPCRequest>(std::move(message)), std::move(arguments)};
}

}  // namespace corvane
