#pragma once

#include <stdexcept>

namespace corvane {

/// What the user gave cannot be used.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace corvane
