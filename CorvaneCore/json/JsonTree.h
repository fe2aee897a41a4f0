#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonSink.h"

namespace corvane {

/// Builds an AnyCodable from events. Among duplicate keys of an object the last one wins.
class JsonTree final : public JsonSink {
 public:
  void null() override { put(std::monostate()); }
  void boolean(bool value) override { put(value); }
  void integer(std::int64_t value) override { put(value); }
  void number(double value) override { put(value); }
  void string(std::string_view value) override { put(std::string(value)); }
  void beginArray() override { open.push_back({Kind::array, 0, {}}); }
  void endArray() override;
  void beginObject() override { open.push_back({Kind::object, members.size(), {}}); }
  void key(std::string_view key) override { members.push_back({std::string(key), {}}); }
  void endObject() override;

  /// The finished value; null before any event.
  [[nodiscard]] AnyCodable take() { return std::exchange(root, AnyCodable()); }

 private:
  enum class Kind : std::uint8_t { array, object };
  struct Open {
    Kind kind;
    /// Where in `members` those of this object begin.
    std::size_t begin;
    /// Those of this array. It may be the largest thing there is, so it is never copied.
    AnyCodable::Array elements;
  };

  /// Puts the next value, one of AnyCodable's alternatives, where it belongs.
  template <class T>
  void put(T&& value) {
    place().value().emplace<std::remove_cvref_t<T>>(std::forward<T>(value));
  }
  /// The place of the value that comes next; it is null.
  AnyCodable& place() {
    if (open.empty()) return root;
    if (open.back().kind == Kind::array) return open.back().elements.emplace_back();
    return members.back().value;
  }

  /// What the open objects hold so far, one after the other. One stack for all lets each finished
  /// object have just the room it needs.
  std::vector<JsonObject::Member> members;
  std::vector<Open> open;
  AnyCodable root;
};

}  // namespace corvane
