#include "CorvaneCore/json/JsonTokens.h"

#include <simdjson.h>

#include <algorithm>
#include <limits>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

/// The library's parser, of which only the first stage is used: it finds tokens with the widest
/// vector instructions of the processor.
using Stages = simdjson::internal::dom_parser_implementation;

[[noreturn]] void fail(simdjson::error_code error) {
  switch (error) {
    case simdjson::EMPTY:
      throw DecodeError("not valid JSON: the text is empty");
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
      throw DecodeError(std::string("not valid JSON: ") + simdjson::error_message(error));
  }
}

void check(simdjson::error_code error) {
  if (error != simdjson::SUCCESS) fail(error);
}

constexpr bool isPunctuation(char byte) {
  return std::string_view("{}[]:,").find(byte) != std::string_view::npos;
}

constexpr bool isSpace(char byte) {
  return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

/// Finds the tokens in place of the library's portable kernel, as its other kernels do. The
/// portable one reads a byte behind a text that ends within a character, lets wrong UTF-8 pass
/// outside strings, and takes a quote within other text for a part of that.
simdjson::error_code findPortably(std::string_view text, Stages& stages) {
  std::uint32_t* next = stages.structural_indexes.get();
  bool escaped = false;
  bool inString = false;
  bool inOther = false;
  bool hasControl = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char byte = text[i];
    const bool isQuote = byte == '"' && !escaped;
    escaped = byte == '\\' && !escaped;
    if (inString) {
      hasControl |= static_cast<unsigned char>(byte) < 0x20;
      inString = !isQuote;
    } else if (isPunctuation(byte)) {
      *next++ = static_cast<std::uint32_t>(i);
      inOther = false;
    } else if (isSpace(byte)) {
      inOther = false;
    } else {
      if (!inOther) *next++ = static_cast<std::uint32_t>(i);
      inString = isQuote;
      inOther = !isQuote;
    }
  }
  stages.n_structural_indexes = static_cast<std::uint32_t>(next - stages.structural_indexes.get());
  if (inString) return simdjson::UNCLOSED_STRING;
  if (hasControl) return simdjson::UNESCAPED_CHARS;
  if (stages.n_structural_indexes == 0) return simdjson::EMPTY;
  return isValidUtf8(text) ? simdjson::SUCCESS : simdjson::UTF8_ERROR;
}

/// The least capacity, in bytes of text.
constexpr std::size_t smallSize = std::size_t{4} << 10;
/// A larger capacity is given back when a smaller text follows.
constexpr std::size_t largeSize = std::size_t{256} << 10;

}  // namespace

struct JsonTokens::Finder {
  std::unique_ptr<Stages> stages;
  bool isPortable = false;

  /// Sees to the capacity for a text of `size` bytes.
  void prepare(std::size_t size) {
    const std::size_t capacity = stages ? stages->capacity() : 0;
    if (capacity >= size && capacity > 0 && (capacity <= largeSize || size > largeSize)) return;
    stages.reset();
    // Nesting is the business of the second stage, so it needs no memory.
    constexpr std::size_t depth = 1;
    const auto& kernel = *simdjson::get_active_implementation();
    check(kernel.create_dom_parser_implementation(std::max(size, smallSize), depth, stages));
    isPortable = kernel.name() == "fallback";
  }

  simdjson::error_code find(std::string_view text) {
    if (isPortable) return findPortably(text, *stages);
    return stages->stage1(reinterpret_cast<const std::uint8_t*>(text.data()), text.size(),
                          simdjson::stage1_mode::regular);
  }
};

JsonTokens::JsonTokens() : finder(std::make_unique<Finder>()) {}
JsonTokens::JsonTokens(JsonTokens&&) noexcept = default;
JsonTokens& JsonTokens::operator=(JsonTokens&&) noexcept = default;
JsonTokens::~JsonTokens() = default;

void JsonTokens::find(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) {
    throw DecodeError("not valid JSON: the text begins with a byte order mark");
  }
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) fail(simdjson::CAPACITY);
  finder->prepare(text.size());
  check(finder->find(text));
  finder->stages->structural_indexes[finder->stages->n_structural_indexes] =
      static_cast<std::uint32_t>(text.size());
}

const std::uint32_t* JsonTokens::begin() const noexcept {
  return finder->stages->structural_indexes.get();
}

const std::uint32_t* JsonTokens::end() const noexcept {
  return begin() + finder->stages->n_structural_indexes;
}

}  // namespace corvane
