#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::ctl {

/// The places that an answer of health names; what it does not name is absent.
struct HealthAnswer {
  std::optional<std::filesystem::path> app;
  std::optional<std::filesystem::path> imports;
  std::optional<std::filesystem::path> requests;
  std::optional<std::filesystem::path> results;
  std::optional<std::filesystem::path> log;
};

/// The command that starts the app, or puts it into its place where it is not found.
[[nodiscard]] std::string commandToStart(const HealthAnswer& places);

[[nodiscard]] HealthAnswer readHealth(std::string_view answer);

}  // namespace corvane::ctl
