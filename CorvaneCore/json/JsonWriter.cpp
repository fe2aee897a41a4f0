#include "CorvaneCore/json/JsonWriter.h"

#include <array>
#include <charconv>
#include <cmath>
#include <variant>

#include "CorvaneCore/json/JsonErrors.h"

namespace corvane {

namespace {

/// For every byte: 0 when it stands for itself in a string, 'u' when it needs \u00XX, else the
/// letter after the backslash.
constexpr std::array<char, 256> escapeTable = [] {
  std::array<char, 256> table{};
  for (std::size_t control = 0; control < 0x20; ++control) table[control] = 'u';
  table['\b'] = 'b';
  table['\t'] = 't';
  table['\n'] = 'n';
  table['\f'] = 'f';
  table['\r'] = 'r';
  table['"'] = '"';
  table['\\'] = '\\';
  return table;
}();

constexpr std::string_view hexDigits = "0123456789abcdef";

}  // namespace

void JsonWriter::separate() {
  if (needsComma) text += ',';
  needsComma = true;
}

void JsonWriter::null() {
  separate();
  text += "null";
}

void JsonWriter::boolean(bool value) {
  separate();
  text += value ? "true" : "false";
}

void JsonWriter::integer(std::int64_t value) {
  separate();
  std::array<char, 24> digits;
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text.append(digits.data(), result.ptr);
}

void JsonWriter::number(double value) {
  if (!std::isfinite(value)) throw EncodeError("a number that is not finite has no JSON form");
  separate();
  const double magnitude = std::abs(value);
  const bool plain = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 1e16);
  std::array<char, 40> digits;
  const auto result =
      std::to_chars(digits.data(), digits.data() + digits.size(), value,
                    plain ? std::chars_format::fixed : std::chars_format::scientific);
  text.append(digits.data(), result.ptr);
}

void JsonWriter::string(std::string_view value) {
  separate();
  quoted(value);
}

void JsonWriter::quoted(std::string_view value) {
  text += '"';
  std::size_t copied = 0;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const auto byte = static_cast<unsigned char>(value[i]);
    char escape = escapeTable[byte];
    if (byte == '/' && slashes == SlashStyle::escaped) escape = '/';
    if (escape == 0) continue;
    text.append(value, copied, i - copied);
    copied = i + 1;
    text += '\\';
    text += escape;
    if (escape == 'u') {
      text += "00";
      text += hexDigits[byte >> 4];
      text += hexDigits[byte & 15];
    }
  }
  text.append(value, copied);
  text += '"';
}

void JsonWriter::beginArray() {
  separate();
  text += '[';
  needsComma = false;
}

void JsonWriter::endArray() {
  text += ']';
  needsComma = true;
}

void JsonWriter::beginObject() {
  separate();
  text += '{';
  needsComma = false;
}

void JsonWriter::key(std::string_view key) {
  separate();
  quoted(key);
  text += ':';
  needsComma = false;
}

void JsonWriter::endObject() {
  text += '}';
  needsComma = true;
}

std::string JsonWriter::take() {
  needsComma = false;
  return std::exchange(text, {});
}

namespace {

/// A container whose contents are being written: where to go on and where to stop.
template <class Iterator>
struct Range {
  Iterator next;
  Iterator end;
};
using OpenArray = Range<AnyCodable::Array::const_iterator>;
using OpenObject = Range<JsonObject::const_iterator>;
using Open = std::variant<OpenArray, OpenObject>;

/// Writes a scalar, or opens a container and puts it on `open`.
void writeOrOpen(const AnyCodable& value, JsonSink& sink, std::vector<Open>& open) {
  if (const auto* text = value.string()) {
    sink.string(*text);
  } else if (const auto* integer = value.integer()) {
    sink.integer(*integer);
  } else if (const auto* number = value.number()) {
    sink.number(*number);
  } else if (const auto* boolean = value.boolean()) {
    sink.boolean(*boolean);
  } else if (const auto* array = value.array()) {
    sink.beginArray();
    open.emplace_back(OpenArray{array->begin(), array->end()});
  } else if (const auto* object = value.object()) {
    sink.beginObject();
    open.emplace_back(OpenObject{object->begin(), object->end()});
  } else {
    sink.null();
  }
}

}  // namespace

void writeValue(const AnyCodable& value, JsonSink& sink) {
  std::vector<Open> open;
  writeOrOpen(value, sink, open);
  while (!open.empty()) {
    if (auto* array = std::get_if<OpenArray>(&open.back())) {
      if (array->next == array->end) {
        sink.endArray();
        open.pop_back();
      } else {
        writeOrOpen(*array->next++, sink, open);
      }
    } else if (auto* object = std::get_if<OpenObject>(&open.back())) {
      if (object->next == object->end) {
        sink.endObject();
        open.pop_back();
      } else {
        const auto& member = *object->next++;
        sink.key(member.key);
        writeOrOpen(member.value, sink, open);
      }
    }
  }
}

std::string toJson(const AnyCodable& value, SlashStyle slashes) {
  JsonWriter writer(slashes);
  writeValue(value, writer);
  return writer.take();
}

}  // namespace corvane
