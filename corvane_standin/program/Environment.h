#pragma once

#include <chrono>
#include <filesystem>
#include <string_view>
#include <thread>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/Date.h"
#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane::standin {

/// Tells the stand-in the time. Everything that waits asks it, so that a test can let hours pass.
class Clock {
 public:
  using Time = std::chrono::steady_clock::time_point;
  using Duration = std::chrono::steady_clock::duration;

  virtual ~Clock() = default;

  /// Returns when that much time has passed.
  virtual void sleep(Duration time) { std::this_thread::sleep_for(time); }

  /// For measuring how long something takes; never goes back.
  [[nodiscard]] virtual Time now() const = 0;
  /// What files and log lines are dated with.
  [[nodiscard]] virtual Date date() const = 0;
};

class SystemClock final : public Clock {
 public:
  [[nodiscard]] Time now() const override { return std::chrono::steady_clock::now(); }
  [[nodiscard]] Date date() const override { return currentDate(); }
};

/// Stands still at one date. What is measured is the time slept, so that it is the same however
/// busy the machine is.
class FixedClock final : public Clock {
 public:
  explicit FixedClock(Date date) : fixed(date) {}

  void sleep(Duration time) override {
    Clock::sleep(time);
    slept += time;
  }
  [[nodiscard]] Time now() const override { return Time(slept); }
  [[nodiscard]] Date date() const override { return fixed; }

 private:
  Date fixed;
  Duration slept{};
};

/// Measures how long the work in hand has lasted.
class Stopwatch {
 public:
  /// Starts at once. `clock` outlives the stopwatch.
  explicit Stopwatch(const Clock& clock) : clock(&clock), began(clock.now()) {}

  void restart() { began = clock->now(); }
  [[nodiscard]] Clock::Duration elapsed() const { return clock->now() - began; }
  [[nodiscard]] bool hasReached(double seconds) const {
    return elapsed() >= std::chrono::duration<double>(seconds);
  }

 private:
  const Clock* clock;
  Clock::Time began;
};

/// The files that the stand-in keeps for itself, beside those it shares with the server.
class StandInPaths {
 public:
  explicit StandInPaths(const AgentPaths& shared)
      : folder(shared.applicationSupport() / "StandIn") {}

  [[nodiscard]] const std::filesystem::path& directory() const { return folder; }
  /// Locked by the one instance of this home and holds its process id.
  [[nodiscard]] std::filesystem::path lockFile() const { return folder / "instance.pid"; }
  [[nodiscard]] std::filesystem::path logFile() const { return folder / "standin.log"; }
  [[nodiscard]] std::filesystem::path settingsFile() const { return folder / "settings.json"; }
  [[nodiscard]] std::filesystem::path capturesDirectory() const { return folder / "Captures"; }
  /// Where a context file goes that could not be read, so that hand-made changes are not lost.
  [[nodiscard]] std::filesystem::path unreadableContextFile() const {
    return folder / "unreadable-context.json";
  }

 private:
  std::filesystem::path folder;
};

/// The stand-in's own small log file. It stays open, so that writing a line never brings a deleted
/// home back. A line that cannot be written is lost: there is nobody to tell.
class StandInLog {
 public:
  /// Appends to the file at `path`; one that has grown large is begun anew.
  StandInLog(const std::filesystem::path& path, const Clock& clock);

  void info(std::string_view message) const { line("INFO", message); }
  void warn(std::string_view message) const { line("WARN", message); }

 private:
  void line(std::string_view level, std::string_view message) const;

  const Clock& clock;
  FileDescriptor file;
};

}  // namespace corvane::standin
