#pragma once

#include <filesystem>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/AgentWire.h"

namespace corvane {

/// Writes `record` to `path` in the shared wire form, whole or not at all.
/// Throws EncodeError or FileError.
template <class Record>
void writeRecord(const Record& record, const std::filesystem::path& path) {
  writeFileWhole(path, AgentWire::encode(record));
}

/// Reads the file at `path` as a Record. Throws FileError or DecodeError.
template <class Record>
[[nodiscard]] Record readRecord(const std::filesystem::path& path) {
  return AgentWire::decode<Record>(readFile(path));
}

}  // namespace corvane
