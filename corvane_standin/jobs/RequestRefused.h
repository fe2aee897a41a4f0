#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace corvane::standin {

/// A request that cannot be fulfilled as it stands; the description is for the agent.
class RequestRefused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  /// `code` tells the agent which action is needed.
  RequestRefused(const std::string& description, std::string code)
      : std::runtime_error(description), code(std::move(code)) {}

  /// Present when the request is blocked, absent when it is in error.
  std::optional<std::string> code;
};

}  // namespace corvane::standin
