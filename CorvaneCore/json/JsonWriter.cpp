#include "CorvaneCore/json/JsonWriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <span>
#include <variant>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane {

namespace {

/// What stands for one byte in a string.
struct Escape {
  std::array<char, 7> text;
  std::uint8_t size;
};
using EscapeTable = std::array<Escape, 256>;

constexpr EscapeTable makeEscapes(SlashStyle slashes) {
  constexpr std::string_view hexDigits = "0123456789abcdef";
  EscapeTable table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    Escape& escape = table[byte];
    escape = {{static_cast<char>(byte)}, 1};
    if (byte < 0x20) {
      escape = {{'\\', 'u', '0', '0', hexDigits[byte >> 4], hexDigits[byte & 15]}, 6};
    }
  }
  const auto abbreviate = [&table](char byte, char letter) {
    table[static_cast<unsigned char>(byte)] = {{'\\', letter}, 2};
  };
  abbreviate('\b', 'b');
  abbreviate('\t', 't');
  abbreviate('\n', 'n');
  abbreviate('\f', 'f');
  abbreviate('\r', 'r');
  abbreviate('"', '"');
  abbreviate('\\', '\\');
  if (slashes == SlashStyle::escaped) abbreviate('/', '/');
  return table;
}
constexpr EscapeTable plainSlashEscapes = makeEscapes(SlashStyle::plain);
constexpr EscapeTable escapedSlashEscapes = makeEscapes(SlashStyle::escaped);
constexpr std::size_t longestEscape = 6;

/// Writes what stands for `byte`, and bytes behind it that do not count. Returns where the next
/// goes.
char* putByte(char byte, const EscapeTable& table, char* out) {
  const Escape& escape = table[static_cast<unsigned char>(byte)];
  std::memcpy(out, &escape, sizeof escape);
  return out + escape.size;
}

/// Eight bytes at once.
using Word = std::uint64_t;

constexpr Word everyByte(unsigned char byte) {
  return Word{0x0101010101010101} * byte;
}

/// Not zero when a byte of `word` is zero.
constexpr Word zeroBytes(Word word) {
  return (word - everyByte(1)) & ~word & everyByte(0x80);
}

/// Whether every byte of `word` stands for itself.
bool isPlain(Word word, SlashStyle slashes) {
  Word found = (word - everyByte(0x20)) & ~word & everyByte(0x80);
  found |= zeroBytes(word ^ everyByte('"')) | zeroBytes(word ^ everyByte('\\'));
  if (slashes == SlashStyle::escaped) found |= zeroBytes(word ^ everyByte('/'));
  return found == 0;
}

/// The `size` bytes at `bytes`, fewer than a word and at least one, and blanks behind them, which
/// stand for themselves. A copy of any size to memory and a load from there would take longer than
/// all the rest.
Word partOfWord(const char* bytes, std::size_t size) {
  static_assert(std::endian::native == std::endian::little);
  const auto at = [](std::size_t position) { return position * 8; };
  Word part = everyByte(' ') << at(size);
  if (size >= sizeof(std::uint32_t)) {
    const std::size_t last = size - sizeof(std::uint32_t);
    std::uint32_t half = 0;
    std::memcpy(&half, bytes, sizeof half);
    part |= half;
    std::memcpy(&half, bytes + last, sizeof half);
    return part | Word{half} << at(last);
  }
  for (const std::size_t position : {std::size_t{0}, size / 2, size - 1}) {
    part |= Word{static_cast<unsigned char>(bytes[position])} << at(position);
  }
  return part;
}

/// Writes the bytes of a string, escaped where they must be, and bytes behind them that do not
/// count: at most as many as an Escape has. Returns where the next goes.
char* putEscaped(std::string_view bytes, SlashStyle slashes, char* out) {
  const EscapeTable& table = slashes == SlashStyle::plain ? plainSlashEscapes : escapedSlashEscapes;
  const char* in = bytes.data();
  const char* const end = in + bytes.size();
  for (; static_cast<std::size_t>(end - in) >= sizeof(Word); in += sizeof(Word)) {
    Word word = 0;
    std::memcpy(&word, in, sizeof word);
    if (isPlain(word, slashes)) {
      std::memcpy(out, &word, sizeof word);
      out += sizeof word;
      continue;
    }
    // Looking up each byte takes less time than branching on where the first escape stands.
#pragma GCC unroll 8
    for (std::size_t i = 0; i < sizeof(Word); ++i) out = putByte(in[i], table, out);
  }
  const auto rest = static_cast<std::size_t>(end - in);
  if (rest == 0) return out;
  const Word word = partOfWord(in, rest);
  if (isPlain(word, slashes)) {
    std::memcpy(out, &word, sizeof word);
    return out + rest;
  }
  for (; in != end; ++in) out = putByte(*in, table, out);
  return out;
}

/// Strings are escaped by so many bytes at a time, so that the buffer for the worst stays small.
constexpr std::size_t sliceSize = std::size_t{4} << 10;
/// A piece leaves when there are this many bytes of it.
constexpr std::size_t pieceSize = std::size_t{64} << 10;

char* copy(std::string_view text, char* out) {
  return std::copy(text.begin(), text.end(), out);
}

}  // namespace

void JsonWriter::grow(std::size_t size) {
  if (drain && used >= pieceSize) {
    drain(std::string_view(buffer).substr(0, used));
    used = 0;
  }
  // Most texts are short and need no second allocation.
  constexpr std::size_t first = 240;
  if (buffer.size() - used < size) buffer.resize(std::max({first, 2 * buffer.size(), used + size}));
}

char* JsonWriter::beginValue(std::size_t size) {
  char* out = claim(size + 1);
  if (needsComma) *out++ = ',';
  needsComma = true;
  return out;
}

void JsonWriter::plain(std::string_view value) {
  put(copy(value, beginValue(value.size())));
}

void JsonWriter::open(char bracket) {
  char* out = beginValue(1);
  *out++ = bracket;
  put(out);
  needsComma = false;
}

void JsonWriter::close(char bracket) {
  char* out = claim(1);
  *out++ = bracket;
  put(out);
  needsComma = true;
}

char* JsonWriter::quoted(std::string_view value) {
  const auto capacityFor = [](std::string_view slice) {
    constexpr std::size_t quotesAndColon = 3;
    return longestEscape * slice.size() + sizeof(Escape) + quotesAndColon;
  };
  std::string_view slice = value.substr(0, sliceSize);
  char* out = beginValue(capacityFor(slice));
  *out++ = '"';
  out = putEscaped(slice, slashes, out);
  while (slice.size() < value.size()) {
    put(out);
    value.remove_prefix(slice.size());
    slice = value.substr(0, sliceSize);
    out = putEscaped(slice, slashes, claim(capacityFor(slice)));
  }
  *out++ = '"';
  return out;
}

void JsonWriter::null() {
  plain("null");
}

void JsonWriter::boolean(bool value) {
  plain(value ? "true" : "false");
}

void JsonWriter::integer(std::int64_t value) {
  constexpr std::size_t longest = 20;
  char* const out = beginValue(longest);
  put(std::to_chars(out, out + longest, value).ptr);
}

void JsonWriter::number(double value) {
  if (!std::isfinite(value)) throw EncodeError("a number that is not finite has no JSON form");
  const double magnitude = std::abs(value);
  // What will be read as an integer is written as one, in all its digits.
  const bool fixed = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 0x1p63);
  constexpr std::size_t longest = 40;
  char* const out = beginValue(longest);
  put(std::to_chars(out, out + longest, value,
                    fixed ? std::chars_format::fixed : std::chars_format::scientific)
          .ptr);
}

void JsonWriter::string(std::string_view value) {
  put(quoted(value));
}

void JsonWriter::beginArray() {
  open('[');
}

void JsonWriter::endArray() {
  close(']');
}

void JsonWriter::beginObject() {
  open('{');
}

void JsonWriter::key(std::string_view key) {
  char* out = quoted(key);
  *out++ = ':';
  put(out);
  needsComma = false;
}

void JsonWriter::endObject() {
  close('}');
}

std::string JsonWriter::take() {
  needsComma = false;
  buffer.resize(std::exchange(used, 0));
  return std::exchange(buffer, {});
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

void JsonTree::endArray() {
  AnyCodable::Array finished;
  if (open.back().begin != nothingYet) {
    finished = std::move(arrays.back());
    arrays.pop_back();
  }
  open.pop_back();
  put(std::move(finished));
}

void JsonTree::endObject() {
  const auto own = std::span(members).subspan(open.back().begin);
  JsonObject finished = JsonObject::takenFrom(own);
  members.erase(members.end() - static_cast<std::ptrdiff_t>(own.size()), members.end());
  open.pop_back();
  put(std::move(finished));
}

namespace {

/// Indentation ends here, so that a text of nothing but brackets does not grow without bound.
constexpr std::size_t deepestIndent = 40;

/// The length of the string literal at the front of `text`, its quotes included.
std::size_t stringLength(std::string_view text) {
  std::size_t end = 1;
  while (end < text.size() && text[end] != '"') end += text[end] == '\\' ? 2 : 1;
  return std::min(end + 1, text.size());
}

}  // namespace

std::string indentedJson(std::string_view compact) {
  std::string text;
  std::size_t depth = 0;
  const auto newLine = [&] { text.append("\n").append(2 * std::min(depth, deepestIndent), ' '); };
  while (!compact.empty()) {
    const char c = compact.front();
    std::size_t length = 1;
    if (c == '"') length = stringLength(compact);
    if (compact.starts_with("{}") || compact.starts_with("[]")) length = 2;
    const bool opens = length == 1 && (c == '{' || c == '[');
    const bool closes = c == '}' || c == ']';
    if (closes) {
      --depth;
      newLine();
    }
    text += compact.substr(0, length);
    compact.remove_prefix(length);
    if (opens) ++depth;
    if (opens || c == ',') newLine();
    if (c == ':') text += ' ';
  }
  return text;
}

}  // namespace corvane
