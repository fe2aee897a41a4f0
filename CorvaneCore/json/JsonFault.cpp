#include "CorvaneCore/json/JsonFault.h"

#include <algorithm>

#include "CorvaneCore/json/JsonScalars.h"
#include "CorvaneCore/json/JsonSyntaxError.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

bool hasSoundEscapes(std::string_view content) {
  try {
    std::string unescaped;
    (void)unescapeJson(content, unescaped);
    return true;
  } catch (const DecodeError&) {
    return false;
  }
}

/// The first string that is none: its beginning, or the character that does not belong in it. The
/// size of the text when all are sound.
std::size_t faultInStrings(std::string_view text) {
  constexpr unsigned char firstPrintable = 0x20;
  for (std::size_t begin = text.find('"'); begin < text.size();) {
    std::size_t end = begin + 1;
    while (end < text.size() && text[end] != '"') {
      if (static_cast<unsigned char>(text[end]) < firstPrintable) return end;
      end += text[end] == '\\' ? 2 : 1;
    }
    if (end >= text.size() || !hasSoundEscapes(text.substr(begin + 1, end - begin - 1))) {
      return begin;
    }
    begin = text.find('"', end + 1);
  }
  return text.size();
}

}  // namespace

std::size_t faultIn(std::string_view text, const DecodeError& error) {
  if (const auto* syntax = dynamic_cast<const JsonSyntaxError*>(&error)) return syntax->offset;
  if (!isValidUtf8(text)) {
    const std::string valid = toValidUtf8(text);
    const auto differs = std::mismatch(text.begin(), text.end(), valid.begin(), valid.end());
    return static_cast<std::size_t>(differs.first - text.begin());
  }
  if (text.starts_with("\xEF\xBB\xBF")) return 0;
  return faultInStrings(text);
}

std::string describePlace(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto lines = std::count(before.begin(), before.end(), '\n');
  const std::size_t lineBegin = before.rfind('\n') + 1;
  return "line " + std::to_string(lines + 1) + ", column " +
         std::to_string(countCharacters(before.substr(lineBegin)) + 1);
}

}  // namespace corvane
