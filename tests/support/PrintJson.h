#pragma once

#include <ostream>

#include "CorvaneCore/json/JsonWriter.h"

namespace corvane {

/// Shows a value as JSON in the messages of failed expectations.
inline void PrintTo(const AnyCodable& value, std::ostream* out) {
  *out << toJson(value);
}

}  // namespace corvane
