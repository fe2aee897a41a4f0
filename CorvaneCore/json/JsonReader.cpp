#include "CorvaneCore/json/JsonReader.h"

// The parser's development checks, which unoptimised builds turn on, abort on deep nesting.
#define SIMDJSON_DEVELOPMENT_CHECKS 0
#include <simdjson.h>

#include <charconv>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "CorvaneCore/json/JsonErrors.h"
#include "CorvaneCore/json/JsonNumber.h"
#include "CorvaneCore/json/JsonTree.h"

namespace corvane {

namespace {

namespace ondemand = simdjson::ondemand;

/// The code unit of a "\uXXXX" escape at `at`, if one stands there.
std::optional<unsigned> unicodeEscape(std::string_view text, std::size_t at) {
  if (at + 6 > text.size() || text[at] != '\\' || text[at + 1] != 'u') return std::nullopt;
  unsigned unit = 0;
  const char* digits = text.data() + at + 2;
  const auto [end, error] = std::from_chars(digits, digits + 4, unit, 16);
  if (error != std::errc{} || end != digits + 4) return std::nullopt;
  return unit;
}

/// Whether every escaped surrogate of a JSON text stands in a pair. Malformed escapes are left to
/// the parser, which refuses them.
bool surrogatesArePaired(std::string_view text) {
  std::size_t at = text.find('\\');
  while (at != std::string_view::npos) {
    std::size_t length = 2;
    if (const auto unit = unicodeEscape(text, at)) {
      length = 6;
      if (*unit >= 0xDC00 && *unit <= 0xDFFF) return false;
      if (*unit >= 0xD800 && *unit <= 0xDBFF) {
        const auto low = unicodeEscape(text, at + 6);
        if (!low || *low < 0xDC00 || *low > 0xDFFF) return false;
        length = 12;
      }
    }
    at = text.find('\\', at + length);
  }
  return true;
}

[[noreturn]] void failParse(simdjson::error_code error, std::optional<std::size_t> offset) {
  switch (error) {
    case simdjson::UTF8_ERROR:
      throw DecodeError("not valid JSON: the text is not valid UTF-8");
    case simdjson::UNESCAPED_CHARS:
      throw DecodeError("not valid JSON: a string holds an unescaped control character");
    case simdjson::UNCLOSED_STRING:
      throw DecodeError("not valid JSON: a string is not closed");
    case simdjson::MEMALLOC:
    case simdjson::CAPACITY:
      throw DecodeError("not readable: the text is too large");
    default:
      throw DecodeError(
          "not valid JSON" +
          (offset ? ": unexpected text at or after byte " + std::to_string(*offset) : ""));
  }
}

/// Walks one document without recursion and reports it to a sink.
class Walk {
 public:
  /// Keeps `position` as JsonReader::position tells it.
  Walk(std::string_view wrapped, ondemand::document& document, JsonSink& sink,
       std::size_t& position)
      : wrapped(wrapped), document(document), sink(sink), position(position) {}

  void run() {
    // The wrapping array holds the text's one value.
    ondemand::array outer = check(document.get_array());
    ondemand::array_iterator next = check(outer.begin());
    if (next == ondemand::array_iterator()) throw DecodeError("not valid JSON: the text is empty");
    value(check(*next));
    while (!open.empty()) step();
    ++next;
    // Only at the end of the text is there no current location.
    const bool ended = next == ondemand::array_iterator() &&
                       document.current_location().error() == simdjson::OUT_OF_BOUNDS;
    if (!ended) fail(simdjson::TAPE_ERROR);
  }

 private:
  struct OpenArray {
    ondemand::array_iterator next;
    bool fresh = true;
  };
  struct OpenObject {
    ondemand::object_iterator next;
    bool fresh = true;
  };

  template <class Result>
  Result check(simdjson::simdjson_result<Result> result) {
    if (result.error() != simdjson::SUCCESS) fail(result.error());
    return std::move(result).value_unsafe();
  }

  [[noreturn]] void fail(simdjson::error_code error) { failParse(error, lastOffset); }

  void noteOffset(std::string_view token) {
    position = offsetOf(token.data());
    lastOffset = position;
  }

  /// After the end of a container.
  void noteEnd() {
    const char* next = nullptr;
    if (document.current_location().get(next) == simdjson::SUCCESS) position = offsetOf(next);
  }

  std::size_t offsetOf(const char* at) const {
    return static_cast<std::size_t>(at - wrapped.data()) - 1;
  }

  void step() {
    if (auto* array = std::get_if<OpenArray>(&open.back())) {
      if (!std::exchange(array->fresh, false)) ++array->next;
      if (array->next == ondemand::array_iterator()) {
        noteEnd();
        sink.endArray();
        open.pop_back();
      } else {
        value(check(*array->next));
      }
    } else if (auto* object = std::get_if<OpenObject>(&open.back())) {
      if (!std::exchange(object->fresh, false)) ++object->next;
      if (object->next == ondemand::object_iterator()) {
        noteEnd();
        sink.endObject();
        open.pop_back();
      } else {
        ondemand::field field = check(*object->next);
        sink.key(check(field.unescaped_key()));
        value(field.value());
      }
    }
  }

  void value(ondemand::value value) {
    const std::string_view token = value.raw_json_token();
    noteOffset(token);
    switch (token.front()) {
      case '[': {
        ondemand::array array = check(value.get_array());
        sink.beginArray();
        open.emplace_back(OpenArray{check(array.begin())});
        break;
      }
      case '{': {
        ondemand::object object = check(value.get_object());
        sink.beginObject();
        open.emplace_back(OpenObject{check(object.begin())});
        break;
      }
      case '"':
        sink.string(check(value.get_string()));
        break;
      default:
        scalar(token);
    }
  }

  void scalar(std::string_view token) {
    token = token.substr(0, token.find_last_not_of(" \t\r\n") + 1);
    if (token == "null") {
      sink.null();
    } else if (token == "true" || token == "false") {
      sink.boolean(token == "true");
    } else if (const auto number = parseJsonNumber(token)) {
      if (const auto* integer = std::get_if<std::int64_t>(&*number)) {
        sink.integer(*integer);
      } else {
        sink.number(std::get<double>(*number));
      }
    } else if (token.find_first_of("0123456789") <= 1) {
      throw DecodeError("not valid JSON: the number at byte " + std::to_string(*lastOffset) +
                        " is malformed or beyond the range of a double");
    } else {
      fail(simdjson::TAPE_ERROR);
    }
  }

  std::string_view wrapped;
  ondemand::document& document;
  JsonSink& sink;
  std::size_t& position;
  std::optional<std::size_t> lastOffset;
  std::vector<std::variant<OpenArray, OpenObject>> open;
};

/// Working memory beyond this is given back after each text.
constexpr std::size_t keptCapacity = std::size_t{1} << 20;

}  // namespace

struct JsonReader::Parser {
  ondemand::parser parser;
  std::string wrapped;
  std::size_t position = 0;
};

JsonReader::JsonReader() : parser(std::make_unique<Parser>()) {}
JsonReader::JsonReader(JsonReader&&) noexcept = default;
JsonReader& JsonReader::operator=(JsonReader&&) noexcept = default;
JsonReader::~JsonReader() = default;

void JsonReader::read(std::string_view text, JsonSink& sink) {
  if (text.starts_with("\xEF\xBB\xBF")) {
    throw DecodeError("not valid JSON: the text begins with a byte order mark");
  }
  if (text.find('\0') != std::string_view::npos) {
    throw DecodeError("not valid JSON: the text holds a NUL byte");
  }
  if (!surrogatesArePaired(text)) {
    throw DecodeError("not valid JSON: a string holds an escaped lone surrogate");
  }
  // Inside an array every value is read alike, be it a container or a scalar.
  auto& wrapped = parser->wrapped;
  wrapped.clear();
  wrapped.reserve(text.size() + 2 + simdjson::SIMDJSON_PADDING);
  wrapped.append("[").append(text).append("]");
  const std::size_t length = wrapped.size();
  wrapped.append(simdjson::SIMDJSON_PADDING, '\0');

  auto document = parser->parser.iterate(wrapped.data(), length, wrapped.size());
  if (document.error() != simdjson::SUCCESS) failParse(document.error(), std::nullopt);
  Walk(std::string_view(wrapped).substr(0, length), document.value_unsafe(), sink, parser->position)
      .run();

  if (wrapped.capacity() > keptCapacity) *parser = Parser();
}

AnyCodable JsonReader::read(std::string_view text) {
  JsonTree tree;
  read(text, tree);
  return tree.take();
}

std::size_t JsonReader::position() const {
  return parser->position;
}

AnyCodable readJson(std::string_view text) {
  return JsonReader().read(text);
}

}  // namespace corvane
