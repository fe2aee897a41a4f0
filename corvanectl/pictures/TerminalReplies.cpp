#include "corvanectl/pictures/TerminalReplies.h"

#include <algorithm>
#include <charconv>

namespace corvane {

namespace {

constexpr char escape = '\033';
/// More than any answer needs; a terminal that goes on and on is not listened to.
constexpr std::size_t longestAnswer = 4096;

/// The numbers of a control sequence, e.g. of "62;4;22"; one that is left out is 0.
std::vector<int> numbersIn(std::string_view parameters) {
  std::vector<int> numbers;
  while (true) {
    const auto end = std::min(parameters.find(';'), parameters.size());
    int number = 0;
    std::from_chars(parameters.data(), parameters.data() + end, number);
    numbers.push_back(number);
    if (end == parameters.size()) return numbers;
    parameters.remove_prefix(end + 1);
  }
}

bool isFinal(char c) {
  return c >= '@' && c <= '~';
}

}  // namespace

void TerminalReplies::take(std::string_view bytes) {
  pending += bytes;
  while (takeOne()) continue;
  if (pending.size() > longestAnswer) pending.clear();
}

void TerminalReplies::expectAttributes() {
  pending.clear();
  attributesCame = false;
}

bool TerminalReplies::takeOne() {
  pending.erase(0, std::min(pending.find(escape), pending.size()));
  if (pending.size() < 2) return false;
  const std::string_view rest = std::string_view(pending).substr(2);
  std::size_t used = 0;
  switch (pending[1]) {
    case '[': {
      const auto final = std::find_if(rest.begin(), rest.end(), isFinal);
      if (final == rest.end()) return false;
      const auto length = static_cast<std::size_t>(final - rest.begin());
      takeControl(rest.substr(0, length), *final);
      used = length + 1;
      break;
    }
    case 'P':
    case '_':
    case ']': {
      constexpr std::string_view terminator = "\033\\";
      const auto end = rest.find(terminator);
      if (end == std::string_view::npos) return false;
      const std::string_view body = rest.substr(0, end);
      constexpr std::string_view nameLead = ">|";
      if (pending[1] == 'P' && body.starts_with(nameLead)) {
        terminalName = body.substr(nameLead.size());
      }
      kittyGraphics |= pending[1] == '_' && body.starts_with("Gi=31") && body.ends_with(";OK");
      used = end + terminator.size();
      break;
    }
    default:
      // A key; what comes after the escape may be another one.
      pending.erase(0, 1);
      return true;
  }
  pending.erase(0, used + 2);
  return true;
}

void TerminalReplies::takeControl(std::string_view parameters, char final) {
  if (final == 'c' && parameters.starts_with('?')) {
    const auto attributes = numbersIn(parameters.substr(1));
    constexpr int sixelGraphics = 4;
    // The first number is the kind of terminal.
    sixel = std::find(attributes.begin() + 1, attributes.end(), sixelGraphics) != attributes.end();
    attributesCame = true;
  } else if (final == 't') {
    const auto numbers = numbersIn(parameters);
    constexpr int cellReport = 6;
    if (numbers.size() == 3 && numbers[0] == cellReport && numbers[1] > 0 && numbers[2] > 0) {
      cell = PixelSize{numbers[2], numbers[1]};
    }
  }
}

}  // namespace corvane
