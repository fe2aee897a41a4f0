#pragma once

#include <string>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonSink.h"

namespace corvane {

/// Whether a forward slash in a string is written as "\/" (some JSON serialisers' default).
enum class SlashStyle { plain, escaped };

/// Writes compact JSON. Keys come out in the order they are given; everything that feeds a writer
/// gives them sorted.
class JsonWriter final : public JsonSink {
 public:
  explicit JsonWriter(SlashStyle slashes = SlashStyle::plain) : slashes(slashes) {}

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

  /// The text written so far; the writer is empty afterwards.
  [[nodiscard]] std::string take();

 private:
  void separate();
  void quoted(std::string_view value);

  SlashStyle slashes;
  bool needsComma = false;
  std::string text;
};

/// Sends `value` to `sink`, object members in key order. Uses no machine stack per level.
void writeValue(const AnyCodable& value, JsonSink& sink);

/// `value` as compact JSON with sorted keys. Throws EncodeError.
[[nodiscard]] std::string toJson(const AnyCodable& value, SlashStyle slashes = SlashStyle::plain);

}  // namespace corvane
