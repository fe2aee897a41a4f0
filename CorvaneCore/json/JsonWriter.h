#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane {

/// Takes one JSON value as a sequence of events: a scalar, or a begin, the contents and an end.
/// Inside an object every value is preceded by its key. Reading a text, walking a value and
/// encoding a record all speak to a sink, so each of them can be joined with each consumer.
class JsonSink {
 public:
  virtual ~JsonSink() = default;

  virtual void null() = 0;
  virtual void boolean(bool value) = 0;
  virtual void integer(std::int64_t value) = 0;
  virtual void number(double value) = 0;
  virtual void string(std::string_view value) = 0;
  virtual void beginArray() = 0;
  virtual void endArray() = 0;
  virtual void beginObject() = 0;
  virtual void key(std::string_view key) = 0;
  virtual void endObject() = 0;
};

/// Whether a forward slash in a string is written as "\/" (some JSON serialisers' default).
enum class SlashStyle { plain, escaped };

/// Writes compact JSON. Keys come out in the order they are given; everything that feeds a writer
/// gives them sorted.
class JsonWriter final : public JsonSink {
 public:
  /// Takes the next piece of a text; a piece may end anywhere.
  using Drain = std::function<void(std::string_view)>;

  explicit JsonWriter(SlashStyle slashes = SlashStyle::plain) : slashes(slashes) {}
  /// A writer that keeps no more than some 100 KB of what it writes: every piece goes to `drain` as
  /// soon as it is large enough, and only the last is left to take.
  explicit JsonWriter(Drain drain) : slashes(SlashStyle::plain), drain(std::move(drain)) {}

  void null() override;
  void boolean(bool value) override;
  void integer(std::int64_t value) override;
  /// Writes the shortest digits that read back to the same double; all of them for a whole number
  /// that reads back as an integer.
  /// Throws EncodeError for infinities and NaN, which JSON cannot hold.
  void number(double value) override;
  void string(std::string_view value) override;
  void beginArray() override;
  void endArray() override;
  void beginObject() override;
  void key(std::string_view key) override;
  void endObject() override;

  /// The text written so far, or what is left of it; the writer is empty afterwards.
  [[nodiscard]] std::string take();

 private:
  /// Where the next `size` bytes go. What is not used of them is given back by put().
  char* claim(std::size_t size) {
    if (size > buffer.size() - used) grow(size);
    return buffer.data() + used;
  }
  void grow(std::size_t size);
  /// What was claimed last has been written up to `end`.
  void put(const char* end) { used = static_cast<std::size_t>(end - buffer.data()); }

  /// Claims the place of a value of `size` bytes, and puts the comma before it that it may need.
  char* beginValue(std::size_t size);
  void plain(std::string_view value);
  void open(char bracket);
  void close(char bracket);
  /// Writes a string, which is still to be put. Returns where it ends; there is room for a colon.
  char* quoted(std::string_view value);

  SlashStyle slashes;
  bool needsComma = false;
  Drain drain;
  /// The text, and spare capacity behind it: growing for every few bytes would cost more than they
  /// do.
  std::string buffer;
  std::size_t used = 0;
};

/// Sends `value` to `sink`, object members in key order. Uses no machine stack per level.
void writeValue(const AnyCodable& value, JsonSink& sink);

/// `value` as compact JSON with sorted keys. Throws EncodeError.
[[nodiscard]] std::string toJson(const AnyCodable& value, SlashStyle slashes = SlashStyle::plain);

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
  /// object have just the capacity it needs.
  std::vector<JsonObject::Member> members;
  /// The open arrays that hold something. They may be the largest things there are, so they are
  /// never copied.
  std::vector<AnyCodable::Array> arrays;
  AnyCodable root;
};

/// `compact`, a compact JSON text, laid out over lines for a reader: two blanks to a level, at most
/// forty levels; an empty array or object stays on its line.
[[nodiscard]] std::string indentedJson(std::string_view compact);

}  // namespace corvane
