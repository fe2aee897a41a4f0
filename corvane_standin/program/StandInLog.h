#pragma once

#include <filesystem>
#include <string_view>

#include "CorvaneCore/files/Files.h"
#include "corvane_standin/program/Clock.h"

namespace corvane::standin {

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
