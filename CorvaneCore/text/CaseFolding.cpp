#include "CorvaneCore/text/CaseFolding.h"

#include <utf8proc.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <new>

namespace corvane {

namespace {

/// The one letter that stands for `letter` in every case.
utf8proc_int32_t foldLetter(utf8proc_int32_t letter, void*) {
  std::array<utf8proc_int32_t, 4> folded;
  int boundClass = 0;
  const auto length =
      utf8proc_decompose_char(letter, folded.data(), folded.size(), UTF8PROC_CASEFOLD, &boundClass);
  return length == 1 ? folded.front() : utf8proc_tolower(letter);
}

}  // namespace

std::string foldCase(std::string_view text) {
  utf8proc_uint8_t* mapped = nullptr;
  const auto length = utf8proc_map_custom(
      reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
      static_cast<utf8proc_ssize_t>(text.size()), &mapped,
      static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE), foldLetter, nullptr);
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(mapped, &std::free);
  if (length < 0) throw std::bad_alloc();
  return {reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length)};
}

}  // namespace corvane
