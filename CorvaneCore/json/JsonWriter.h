#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonSink.h"

namespace corvane {

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
  /// Writes the shortest digits that read back to the same double.
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
    if (size > room.size() - used) makeRoom(size);
    return room.data() + used;
  }
  void makeRoom(std::size_t size);
  /// What was claimed last has been written up to `end`.
  void put(const char* end) { used = static_cast<std::size_t>(end - room.data()); }

  /// Claims room for a value of `size` bytes, and puts the comma before it that it may need.
  char* beginValue(std::size_t size);
  void plain(std::string_view value);
  void open(char bracket);
  void close(char bracket);
  /// Puts a string and `after`.
  void quoted(std::string_view value, std::string_view after);

  SlashStyle slashes;
  bool needsComma = false;
  Drain drain;
  /// The text, and room for more: growing anew for every few bytes would cost more than they do.
  std::string room;
  std::size_t used = 0;
};

/// Sends `value` to `sink`, object members in key order. Uses no machine stack per level.
void writeValue(const AnyCodable& value, JsonSink& sink);

/// `value` as compact JSON with sorted keys. Throws EncodeError.
[[nodiscard]] std::string toJson(const AnyCodable& value, SlashStyle slashes = SlashStyle::plain);

}  // namespace corvane
