#include "CorvaneCore/text/CaseFolding.h"

#include <utf8proc.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

namespace corvane {

namespace {

/// The one letter that stands for `letter` in every case. Marks have no case of their own.
utf8proc_int32_t foldLetter(utf8proc_int32_t letter, void*) {
  if (utf8proc_category(letter) == UTF8PROC_CATEGORY_MN) return letter;
  std::array<utf8proc_int32_t, 4> folded;
  int boundClass = 0;
  const auto length =
      utf8proc_decompose_char(letter, folded.data(), folded.size(), UTF8PROC_CASEFOLD, &boundClass);
  return length == 1 ? folded.front() : utf8proc_tolower(letter);
}

std::string map(std::string_view text, int options, utf8proc_custom_func letterwise) {
  utf8proc_uint8_t* mapped = nullptr;
  const auto length = utf8proc_map_custom(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                          static_cast<utf8proc_ssize_t>(text.size()), &mapped,
                                          static_cast<utf8proc_option_t>(UTF8PROC_STABLE | options),
                                          letterwise, nullptr);
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(mapped, &std::free);
  if (length < 0) throw std::bad_alloc();
  return {reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length)};
}

}  // namespace

std::string foldCase(std::string_view text) {
  // Taken apart first: the dot of a capital dotted I is a mark, and a mark is not folded.
  return map(map(text, UTF8PROC_DECOMPOSE, nullptr), UTF8PROC_COMPOSE, foldLetter);
}

}  // namespace corvane
