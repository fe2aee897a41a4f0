#include "CorvaneCore/json/JsonTokens.h"

#include <simdjson.h>

#include <algorithm>
#include <limits>

#include "CorvaneCore/json/AnyCodable.h"

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

/// The least capacity, in bytes of text.
constexpr std::size_t smallSize = std::size_t{4} << 10;
/// A larger capacity is given back when a smaller text follows.
constexpr std::size_t largeSize = std::size_t{256} << 10;

}  // namespace

struct JsonTokens::Finder {
  std::unique_ptr<Stages> stages;

  /// Sees to the capacity for a text of `size` bytes.
  void prepare(std::size_t size) {
    const std::size_t capacity = stages ? stages->capacity() : 0;
    if (capacity >= size && capacity > 0 && (capacity <= largeSize || size > largeSize)) return;
    stages.reset();
    // Nesting is the business of the second stage, so it needs no memory.
    constexpr std::size_t depth = 1;
    check(simdjson::get_active_implementation()->create_dom_parser_implementation(
        std::max(size, smallSize), depth, stages));
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
  const auto error = finder->stages->stage1(reinterpret_cast<const std::uint8_t*>(text.data()),
                                            text.size(), simdjson::stage1_mode::regular);
  check(error);
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
