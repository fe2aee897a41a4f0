#include "corvanectl/terminal/FirstSentence.h"

namespace corvane {

namespace {

bool isSpace(char c) {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

bool isSmallLetter(char c) {
  return c >= 'a' && c <= 'z';
}

/// Whether the punctuation before `rest` ends a sentence; that of "e.g. this" does not.
bool beginsNewSentence(std::string_view rest) {
  if (rest.empty()) return true;
  if (!isSpace(rest.front())) return false;
  while (!rest.empty() && isSpace(rest.front())) rest.remove_prefix(1);
  return rest.empty() || !isSmallLetter(rest.front());
}

}  // namespace

std::string_view firstSentence(std::string_view text) {
  text = text.substr(0, text.find("\n\n"));
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool stop = text[i] == '.' || text[i] == '!' || text[i] == '?';
    if (stop && beginsNewSentence(text.substr(i + 1))) return text.substr(0, i + 1);
  }
  return text;
}

}  // namespace corvane
