#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace corvane::standin {

/// What the stand-in's program calls itself.
inline constexpr const char* programDescription =
    "A stand-in for Corvane.app that fulfils its half of the shared files";

/// What the command line of the stand-in says.
struct Options {
  bool quit = false;
  bool printSchema = false;
  std::optional<std::string> home;
  std::optional<std::string> scenario;
  std::optional<double> stepSeconds;
  std::optional<double> buildSeconds;
  std::optional<double> heartbeatSeconds;
  std::optional<double> coldStartSeconds;

  /// Adds the options to `program`, which fills in this object.
  void addTo(CLI::App& program);
};

}  // namespace corvane::standin
