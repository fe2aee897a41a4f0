#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace corvane {

/// The server could not be started, ended early, or said something the protocol does not allow.
class ProtocolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The server's output has ended. The description is how: "the server ended with exit status 3".
class ServerEnded : public ProtocolError {
 public:
  using ProtocolError::ProtocolError;
};

/// The server answered a request with a JSON-RPC error.
class RpcError : public ProtocolError {
 public:
  RpcError(const std::string& method, std::int64_t code, const std::string& message)
      : ProtocolError("the server refused " + method + ": " + message + " (error " +
                      std::to_string(code) + ")") {}
};

/// The server did not answer in time.
class NoAnswer : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace corvane
