#pragma once

#include <cstdint>
#include <limits>
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
  void beginArray() override { open.push_back({Kind::array, nothingYet}); }
  void endArray() override;
  void beginObject() override {
    open.push_back({Kind::object, static_cast<std::uint32_t>(members.size())});
  }
  void key(std::string_view key) override { members.push_back({std::string(key), {}}); }
  void endObject() override;

  /// The finished value; null before any event.
  [[nodiscard]] AnyCodable take() { return std::exchange(root, AnyCodable()); }

 private:
  enum class Kind : std::uint8_t { array, object };
  static constexpr std::uint32_t nothingYet = std::numeric_limits<std::uint32_t>::max();
  /// A container whose end has not come. There can be one for every byte of a text, so it is small.
  struct Open {
    Kind kind;
    /// Where in `members` those of an object begin, or where in `arrays` an array is.
    std::uint32_t begin;
  };

  /// Puts the next value, one of AnyCodable's alternatives, where it belongs.
  template <class T>
  void put(T&& value) {
    place().value().emplace<std::remove_cvref_t<T>>(std::forward<T>(value));
  }
  /// The place of the value that comes next; it is null.
  AnyCodable& place() {
    if (open.empty()) return root;
    Open& innermost = open.back();
    if (innermost.kind == Kind::object) return members.back().value;
    if (innermost.begin == nothingYet) {
      innermost.begin = static_cast<std::uint32_t>(arrays.size());
      arrays.emplace_back();
    }
    return arrays.back().emplace_back();
  }

  std::vector<Open> open;
  /// What the open objects hold so far, one after the other. One stack for all lets each finished
  /// object have just the room it needs.
  std::vector<JsonObject::Member> members;
  /// The open arrays that hold something. They may be the largest things there are, so they are
  /// never copied.
  std::vector<AnyCodable::Array> arrays;
  AnyCodable root;
};

}  // namespace corvane
