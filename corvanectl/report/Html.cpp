#include "corvanectl/report/Html.h"

#include <cstddef>

#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

Html& Html::add(Markup markup) {
  held += markup.text();
  handOnIfLarge();
  return *this;
}

Html& Html::text(std::string_view foreign) {
  return data(cleanLines(foreign));
}

Html& Html::line(std::string_view foreign) {
  return data(oneLine(foreign));
}

Html& Html::data(std::string_view foreign) {
  for (const char c : foreign) {
    switch (c) {
      case '&':
        held += "&amp;";
        break;
      case '<':
        held += "&lt;";
        break;
      case '>':
        held += "&gt;";
        break;
      case '"':
        held += "&quot;";
        break;
      default:
        held += c;
    }
  }
  handOnIfLarge();
  return *this;
}

void Html::finish() {
  append(held);
  held.clear();
}

void Html::handOnIfLarge() {
  constexpr std::size_t large = std::size_t{64} << 10;
  if (held.size() >= large) finish();
}

}  // namespace corvane::ctl
