#pragma once

#include <string>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonSink.h"

namespace corvane {

/// Builds an AnyCodable from events. Among duplicate keys of an object the last one wins.
class JsonTree final : public JsonSink {
 public:
  void null() override { add(AnyCodable()); }
  void boolean(bool value) override { add(AnyCodable(value)); }
  void integer(std::int64_t value) override { add(AnyCodable(value)); }
  void number(double value) override { add(AnyCodable(value)); }
  void string(std::string_view value) override { add(AnyCodable(value)); }
  void beginArray() override { open.emplace_back(AnyCodable::Array()); }
  void endArray() override;
  void beginObject() override { open.emplace_back(Members()); }
  void key(std::string_view key) override;
  void endObject() override;

  /// The finished value; null before any event.
  [[nodiscard]] AnyCodable take() { return std::exchange(root, AnyCodable()); }

 private:
  using Members = std::vector<JsonObject::Member>;

  void add(AnyCodable value);

  std::vector<std::variant<AnyCodable::Array, Members>> open;
  AnyCodable root;
};

}  // namespace corvane
