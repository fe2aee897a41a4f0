#include "CorvaneCore/json/JsonTree.h"

#include <iterator>

namespace corvane {

void JsonTree::endArray() {
  const auto first = contents.begin() + static_cast<std::ptrdiff_t>(open.back().begin);
  AnyCodable::Array elements;
  elements.reserve(static_cast<std::size_t>(contents.end() - first));
  for (auto next = first; next != contents.end(); ++next) {
    elements.push_back(std::move(next->value));
  }
  contents.erase(first, contents.end());
  open.pop_back();
  place() = AnyCodable(std::move(elements));
}

void JsonTree::endObject() {
  const auto first = contents.begin() + static_cast<std::ptrdiff_t>(open.back().begin);
  std::vector<JsonObject::Member> members(std::make_move_iterator(first),
                                          std::make_move_iterator(contents.end()));
  contents.erase(first, contents.end());
  open.pop_back();
  place() = AnyCodable(JsonObject(std::move(members)));
}

}  // namespace corvane
