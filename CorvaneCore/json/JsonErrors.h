#pragma once

#include <stdexcept>

namespace corvane {

/// A text or value does not have the form its reader needs. The description is one line that names
/// the place and what was expected there.
class DecodeError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A value cannot be written as JSON.
class EncodeError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace corvane
