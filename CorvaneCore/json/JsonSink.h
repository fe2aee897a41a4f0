#pragma once

#include <cstdint>
#include <string_view>

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

}  // namespace corvane
