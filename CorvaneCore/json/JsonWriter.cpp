#include "CorvaneCore/json/JsonWriter.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
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

/// Eight bytes at once.
using Word = std::uint64_t;

constexpr Word everyByte(unsigned char byte) {
  return Word{0x0101010101010101} * byte;
}

/// The high bit of every byte of `word` that is zero, and perhaps of bytes after such a one.
constexpr Word zeroBytes(Word word) {
  return (word - everyByte(1)) & ~word & everyByte(0x80);
}

/// The high bit of every byte of `word` that needs an escape, and perhaps of bytes after such a
/// one.
Word bytesToEscape(Word word, SlashStyle slashes) {
  Word found = (word - everyByte(0x20)) & ~word & everyByte(0x80);
  found |= zeroBytes(word ^ everyByte('"')) | zeroBytes(word ^ everyByte('\\'));
  if (slashes == SlashStyle::escaped) found |= zeroBytes(word ^ everyByte('/'));
  return found;
}

/// How many bytes at `text` stand for themselves before the first one that needs an escape; at most
/// as many as a Word has.
std::size_t plainBytes(const char* text, SlashStyle slashes) {
  Word word = 0;
  std::memcpy(&word, text, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return static_cast<std::size_t>(std::countr_zero(bytesToEscape(word, slashes))) / 8;
}

/// Writes a byte of a string to `out`, escaped where it must be. Returns where the next one goes,
/// at most longestEscape further.
char* writeByte(unsigned char byte, SlashStyle slashes, char* out) {
  const char escape = byte == '/' && slashes == SlashStyle::escaped ? '/' : escapeTable[byte];
  if (escape == 0) {
    *out++ = static_cast<char>(byte);
    return out;
  }
  *out++ = '\\';
  *out++ = escape;
  if (escape == 'u') {
    *out++ = '0';
    *out++ = '0';
    *out++ = hexDigits[byte >> 4];
    *out++ = hexDigits[byte & 15];
  }
  return out;
}
constexpr std::size_t longestEscape = 6;

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
  // What one turn of the loop writes at most, and the closing quote.
  constexpr std::size_t room = sizeof(Word) + longestEscape + 1;
  const std::size_t start = text.size();
  text.resize(start + value.size() + value.size() / 8 + 1 + room);
  char* out = text.data() + start;
  const char* limit = text.data() + text.size() - room;
  const char* in = value.data();
  const char* const end = in + value.size();
  *out++ = '"';
  while (in != end) {
    if (out > limit) {
      const auto written = static_cast<std::size_t>(out - text.data());
      text.resize(written + 2 * static_cast<std::size_t>(end - in) + room);
      out = text.data() + written;
      limit = text.data() + text.size() - room;
    }
    if (static_cast<std::size_t>(end - in) >= sizeof(Word)) {
      // Copies the word whole; what is not plain is written over.
      std::memcpy(out, in, sizeof(Word));
      const std::size_t plain = plainBytes(in, slashes);
      in += plain;
      out += plain;
      if (plain == sizeof(Word)) continue;
    }
    out = writeByte(static_cast<unsigned char>(*in++), slashes, out);
  }
  *out++ = '"';
  text.resize(static_cast<std::size_t>(out - text.data()));
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
