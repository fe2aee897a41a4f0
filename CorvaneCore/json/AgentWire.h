#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/Codec.h"
#include "CorvaneCore/json/JsonReader.h"

/// The one wire form of every file shared with Corvane.app: compact JSON, keys sorted, slashes not
/// escaped, dates as ISO 8601 texts in whole seconds, empty optionals left out.
namespace corvane::AgentWire {

/// Throws EncodeError.
template <class T>
[[nodiscard]] std::string encode(const T& value) {
  JsonWriter writer;
  Codec<T>::encode(value, writer);
  return writer.take();
}

/// Throws DecodeError.
template <class T>
[[nodiscard]] T decode(std::string_view text) {
  return decodeValue<T>(readJson(text));
}

}  // namespace corvane::AgentWire

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
