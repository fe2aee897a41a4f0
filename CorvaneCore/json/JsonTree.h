#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonSink.h"

namespace corvane {

/// Builds an AnyCodable from events. Among duplicate keys of an object the last one wins.
class JsonTree final : public JsonSink {
 public:
  void null() override { place() = AnyCodable(); }
  void boolean(bool value) override { place() = AnyCodable(value); }
  void integer(std::int64_t value) override { place() = AnyCodable(value); }
  void number(double value) override { place() = AnyCodable(value); }
  void string(std::string_view value) override { place() = AnyCodable(value); }
  void beginArray() override { open.push_back({contents.size(), false}); }
  void endArray() override;
  void beginObject() override { open.push_back({contents.size(), true}); }
  void key(std::string_view key) override { contents.push_back({std::string(key), {}}); }
  void endObject() override;

  /// The finished value; null before any event.
  [[nodiscard]] AnyCodable take() { return std::exchange(root, AnyCodable()); }

 private:
  struct Open {
    /// Where in `contents` its own begin.
    std::size_t begin;
    bool isObject;
  };

  /// Where the value that comes next belongs.
  AnyCodable& place() {
    if (open.empty()) return root;
    if (!open.back().isObject) contents.emplace_back();
    return contents.back().value;
  }

  /// What the open containers hold so far, one after the other; elements of arrays have no key.
  /// One stack for all lets each finished container have just the room it needs.
  std::vector<JsonObject::Member> contents;
  std::vector<Open> open;
  AnyCodable root;
};

}  // namespace corvane
