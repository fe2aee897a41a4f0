#pragma once

#include <stdexcept>

namespace corvane {

/// A picture cannot be read or made. The description is one line that says why, for people.
class PictureError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace corvane
