#pragma once

#include <stdlib.h>

#include <optional>
#include <string>

namespace corvane::testing {

/// Sets or unsets an environment variable and puts back what it was at the end of its life.
class EnvironmentVariable {
 public:
  explicit EnvironmentVariable(const char* name) : name(name) {
    if (const char* value = ::getenv(name)) before = value;
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() { set(before ? before->c_str() : nullptr); }

  void set(const char* value) const {
    if (value) {
      ::setenv(name, value, 1);
    } else {
      ::unsetenv(name);
    }
  }

 private:
  const char* name;
  std::optional<std::string> before;
};

}  // namespace corvane::testing
