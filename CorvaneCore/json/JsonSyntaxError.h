#pragma once

#include <cstddef>
#include <string>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane {

/// A text is not valid JSON, and where it stops being so is known.
class JsonSyntaxError : public DecodeError {
 public:
  JsonSyntaxError(const std::string& description, std::size_t offset)
      : DecodeError(description), offset(offset) {}

  /// In bytes from the beginning of the text.
  std::size_t offset;
};

}  // namespace corvane
