#include "CorvaneCore/text/FileName.h"

#include <utf8proc.h>

#include <algorithm>

namespace corvane {

namespace {

struct CodePoint {
  utf8proc_int32_t value;
  std::size_t length;
};

/// The code point at the front of `text`, which is not empty; U+FFFD for a byte that is not UTF-8.
CodePoint firstCodePoint(std::string_view text) {
  utf8proc_int32_t value = 0;
  const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                       static_cast<utf8proc_ssize_t>(text.size()), &value);
  if (length < 1) return {0xFFFD, 1};
  return {value, static_cast<std::size_t>(length)};
}

bool isKept(utf8proc_int32_t codePoint) {
  if (codePoint == '-' || codePoint == '_') return true;
  switch (utf8proc_category(codePoint)) {
    case UTF8PROC_CATEGORY_LU:
    case UTF8PROC_CATEGORY_LL:
    case UTF8PROC_CATEGORY_LT:
    case UTF8PROC_CATEGORY_LM:
    case UTF8PROC_CATEGORY_LO:
    case UTF8PROC_CATEGORY_MN:
    case UTF8PROC_CATEGORY_MC:
    case UTF8PROC_CATEGORY_ME:
    case UTF8PROC_CATEGORY_ND:
    case UTF8PROC_CATEGORY_NL:
    case UTF8PROC_CATEGORY_NO:
      return true;
    default:
      return false;
  }
}

}  // namespace

std::string fileNamePart(std::string_view text) {
  std::string part;
  while (!text.empty()) {
    const CodePoint first = firstCodePoint(text);
    part += isKept(first.value) ? text.substr(0, first.length) : std::string_view("-");
    text.remove_prefix(first.length);
  }
  return part;
}

std::string_view shortenedTo(std::string_view text, std::size_t bytes) {
  if (text.size() <= bytes) return text;
  std::size_t cut = 0;
  std::size_t read = 0;
  utf8proc_int32_t previous = 0;
  utf8proc_int32_t state = 0;
  while (read <= bytes) {
    const CodePoint next = firstCodePoint(text.substr(read));
    if (utf8proc_grapheme_break_stateful(previous, next.value, &state)) cut = read;
    previous = next.value;
    read += next.length;
  }
  return text.substr(0, cut);
}

}  // namespace corvane
