#include "corvanectl/setup/JsonComments.h"

#include <algorithm>

namespace corvane::ctl {

namespace {

constexpr std::string_view blanks = " \t\r\n";

/// Behind the string that begins at `begin`; the end of the text when it is not closed.
std::size_t endOfString(std::string_view text, std::size_t begin) {
  std::size_t at = begin + 1;
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return std::min(at + 1, text.size());
}

/// Behind the comment that begins at `begin`. One that is not closed is none.
std::size_t endOfComment(std::string_view text, std::size_t begin) {
  const std::string_view mark = text.substr(begin, 2);
  if (mark == "//") return std::min(text.find_first_of("\r\n", begin), text.size());
  const std::size_t end = mark == "/*" ? text.find("*/", begin + 2) : std::string_view::npos;
  return end == std::string_view::npos ? begin : end + 2;
}

}  // namespace

std::string withoutComments(std::string_view text) {
  std::string bare(text);
  const auto blank = [&bare](std::size_t begin, std::size_t end) {
    std::fill(bare.begin() + static_cast<std::ptrdiff_t>(begin),
              bare.begin() + static_cast<std::ptrdiff_t>(end), ' ');
  };
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(byteOrderMark)) blank(0, byteOrderMark.size());
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == '"') {
      at = endOfString(text, at);
      continue;
    }
    const std::size_t end = endOfComment(text, at);
    blank(at, end);
    at = std::max(end, at + 1);
  }
  return bare;
}

std::string withoutLastCommas(std::string text) {
  const std::string_view before = text;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == '"') {
      at = endOfString(text, at);
      continue;
    }
    if (text[at] == ',') {
      const std::size_t next = before.find_first_not_of(blanks, at + 1);
      const std::size_t former = before.find_last_not_of(blanks, at - 1);
      const bool isLast = next < text.size() && (text[next] == '}' || text[next] == ']');
      const bool followsValue = at > 0 && former < text.size() && text[former] != '{' &&
                                text[former] != '[' && text[former] != ',';
      if (isLast && followsValue) text[at] = ' ';
    }
    ++at;
  }
  return text;
}

}  // namespace corvane::ctl
