#include "CorvaneCore/json/JsonReader.h"

#include <algorithm>
#include <type_traits>
#include <variant>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonScalars.h"
#include "CorvaneCore/json/JsonSyntaxError.h"

namespace corvane {

namespace {

/// Takes events of which nothing is kept.
struct Nothing {
  void null() {}
  void boolean(bool) {}
  void integer(std::int64_t) {}
  void number(double) {}
  void beginArray() {}
  void endArray() {}
  void beginObject() {}
  void endObject() {}
};

constexpr bool isJsonSpace(char byte) {
  return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

}  // namespace

namespace {

[[noreturn]] void failAt(std::size_t offset) {
  throw JsonSyntaxError("not valid JSON: unexpected text at byte " + std::to_string(offset),
                        offset);
}

}  // namespace

void JsonCursor::failHere() const {
  if (next == end) throw JsonSyntaxError("not valid JSON: the text ends too early", text.size());
  failAt(*next);
}

void JsonCursor::failScalar(std::string_view token, std::size_t begin) {
  if (token.find_first_of("0123456789") <= 1) {
    throw JsonSyntaxError("not valid JSON: the number at byte " + std::to_string(begin) +
                              " is malformed or beyond the range of a double",
                          begin);
  }
  failAt(begin);
}

std::string_view JsonCursor::takeToken() noexcept {
  const std::size_t begin = *next++;
  std::size_t size = *next - begin;
  while (isJsonSpace(text[begin + size - 1])) --size;
  return text.substr(begin, size);
}

std::string_view JsonCursor::takeString() {
  const std::string_view token = takeToken();
  const std::string_view content = token.substr(1, token.size() - 2);
  return escapes ? unescapeJson(content, unescaped) : content;
}

std::string_view JsonCursor::takeKey() {
  if (byte() != '"') failHere();
  const std::string_view key = takeString();
  expect(':');
  return key;
}

template <class Events>
void JsonCursor::string(Events& events) {
  if constexpr (std::is_same_v<Events, Nothing>) {
    // Only an escape could be wrong in a string.
    escapes ? void(takeString()) : void(++next);
  } else {
    events.string(takeString());
  }
}

template <class Events>
void JsonCursor::key(Events& events) {
  if constexpr (std::is_same_v<Events, Nothing>) {
    if (byte() != '"') failHere();
    string(events);
    expect(':');
  } else {
    events.key(takeKey());
  }
}

template <class Events>
void JsonCursor::scalar(Events& events) {
  const std::size_t begin = position();
  const std::string_view token = takeToken();
  if (token == "null") {
    events.null();
  } else if (token == "true" || token == "false") {
    events.boolean(token == "true");
  } else if constexpr (std::is_same_v<Events, Nothing>) {
    if (!isJsonNumber(token)) failScalar(token, begin);
  } else if (const auto number = parseJsonNumber(token)) {
    if (const auto* integer = std::get_if<std::int64_t>(&*number)) {
      events.integer(*integer);
    } else {
      events.number(std::get<double>(*number));
    }
  } else {
    failScalar(token, begin);
  }
}

template <class Events>
void JsonCursor::walk(Events& events) {
  // What closes the containers that are open, the innermost last.
  std::string closers;
  while (true) {
    switch (byte()) {
      case '{':
        ++next;
        events.beginObject();
        closers.push_back('}');
        if (byte() == '}') break;
        key(events);
        continue;
      case '[':
        ++next;
        events.beginArray();
        closers.push_back(']');
        if (byte() == ']') break;
        continue;
      case '"':
        string(events);
        break;
      case '\0':
      case '}':
      case ']':
      case ':':
      case ',':
        failHere();
      default:
        scalar(events);
    }
    while (!closers.empty() && accept(closers.back())) {
      closers.back() == '}' ? events.endObject() : events.endArray();
      closers.pop_back();
    }
    if (closers.empty()) return;
    expect(',');
    if (closers.back() == '}') key(events);
  }
}

AnyCodable JsonCursor::read() {
  walk(tree);
  return tree.take();
}

void JsonCursor::skip() {
  Nothing nothing;
  walk(nothing);
}

std::optional<std::string_view> JsonCursor::takeIfString() {
  if (byte() != '"') return std::nullopt;
  return takeString();
}

std::optional<bool> JsonCursor::takeIfBoolean() {
  const auto* const before = next;
  if (byte() == 't' || byte() == 'f') {
    const std::string_view token = takeToken();
    if (token == "true" || token == "false") return token == "true";
    next = before;
  }
  return std::nullopt;
}

std::optional<std::int64_t> JsonCursor::takeIfInteger() {
  const auto* const before = next;
  if (byte() == '-' || (byte() >= '0' && byte() <= '9')) {
    const auto number = parseJsonNumber(takeToken());
    if (number && std::holds_alternative<std::int64_t>(*number)) {
      return std::get<std::int64_t>(*number);
    }
    next = before;
  }
  return std::nullopt;
}

AnyCodable JsonReader::read(std::string_view text) {
  AnyCodable value;
  read(text, [&value](JsonCursor& cursor) { value = cursor.read(); });
  return value;
}

AnyCodable readJson(std::string_view text) {
  return JsonReader().read(text);
}

JsonObject readMembers(std::string_view text, const std::vector<std::string_view>& names) {
  bool isObject = false;
  std::vector<JsonObject::Member> wanted;
  JsonReader().read(text, [&](JsonCursor& cursor) {
    isObject = cursor.atObject();
    if (!isObject) return cursor.skip();
    cursor.members([&](std::string_view key) {
      if (std::find(names.begin(), names.end(), key) == names.end()) return cursor.skip();
      auto& member = wanted.emplace_back(std::string(key), AnyCodable());
      member.value = cursor.read();
    });
  });
  if (!isObject) throw DecodeError("expected an object");
  return JsonObject(std::move(wanted));
}

}  // namespace corvane
