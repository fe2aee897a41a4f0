#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <utility>

namespace corvane::ctl {

/// A part of a trial is missing, or does not start or end as it should.
class TrialFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The programs that a trial is made of.
struct TrialPrograms {
  /// This program, as it is to be found later.
  std::filesystem::path corvanectl;
  /// The server, where it was named.
  std::optional<std::filesystem::path> server;
  /// The bundle of the stand-in for Corvane.app.
  std::filesystem::path standIn;
};

/// The home of a trial: a folder that takes the place of the user's home for a server and the
/// stand-in for Corvane.app, so that they meet nobody else's files. Around the server lies a bundle
/// of the app, which comes before any that is installed.
class TrialHome {
 public:
  /// The one that is used unless another is named.
  [[nodiscard]] static std::filesystem::path usual();

  explicit TrialHome(std::filesystem::path folder) : home(std::move(folder)) {}

  [[nodiscard]] const std::filesystem::path& folder() const { return home; }
  /// What clients start.
  [[nodiscard]] std::filesystem::path server() const { return home / "corvane-mcp"; }
  /// What starts the stand-in in this home, whatever the environment.
  [[nodiscard]] std::filesystem::path standIn() const;
  /// What the server is to take for its own path.
  [[nodiscard]] std::filesystem::path serverInBundle() const;
  /// Has a file for every server that runs in this home.
  [[nodiscard]] std::filesystem::path servers() const { return home / "Servers"; }
  /// What the stand-in had to say last when it was started or asked to quit.
  [[nodiscard]] std::filesystem::path errors() const { return home / "start.log"; }

  /// Whether the folder is the home of a trial.
  [[nodiscard]] bool exists() const;
  /// Makes the home, or brings it up to date. Throws UsageError for a folder that holds something
  /// else, and FileError or std::system_error.
  void prepare(const TrialPrograms& programs) const;
  /// Removes what makes up the home, and the folder when nothing else is in it. Throws
  /// std::system_error.
  void remove() const;
  /// Makes it the home of this process and of those that it starts.
  void enter() const;

 private:
  std::filesystem::path home;
};

}  // namespace corvane::ctl
