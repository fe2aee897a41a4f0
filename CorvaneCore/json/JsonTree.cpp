#include "CorvaneCore/json/JsonTree.h"

#include <span>

namespace corvane {

void JsonTree::endArray() {
  AnyCodable::Array finished;
  if (open.back().begin != nothingYet) {
    finished = std::move(arrays.back());
    arrays.pop_back();
  }
  open.pop_back();
  put(std::move(finished));
}

void JsonTree::endObject() {
  const auto own = std::span(members).subspan(open.back().begin);
  JsonObject finished(own);
  members.erase(members.end() - static_cast<std::ptrdiff_t>(own.size()), members.end());
  open.pop_back();
  put(std::move(finished));
}

}  // namespace corvane
