#pragma once

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace corvane::testing {

/// A session did not go as its script says. The text begins with the script's file and line.
class SessionFailure : public std::runtime_error {
 public:
  SessionFailure(const std::filesystem::path& file, std::size_t line, const std::string& problem)
      : std::runtime_error(file.string() + ":" + std::to_string(line) + ": " + problem) {}
};

}  // namespace corvane::testing
