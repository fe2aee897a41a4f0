#include "CorvaneCore/json/JsonTree.h"

namespace corvane {

void JsonTree::add(AnyCodable value) {
  if (open.empty()) {
    root = std::move(value);
  } else if (auto* array = std::get_if<AnyCodable::Array>(&open.back())) {
    array->push_back(std::move(value));
  } else {
    std::get<Members>(open.back()).back().value = std::move(value);
  }
}

void JsonTree::key(std::string_view key) {
  std::get<Members>(open.back()).push_back({std::string(key), AnyCodable()});
}

void JsonTree::endArray() {
  AnyCodable finished(std::move(std::get<AnyCodable::Array>(open.back())));
  open.pop_back();
  add(std::move(finished));
}

void JsonTree::endObject() {
  AnyCodable finished(JsonObject(std::move(std::get<Members>(open.back()))));
  open.pop_back();
  add(std::move(finished));
}

}  // namespace corvane
