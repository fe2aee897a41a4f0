#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane::ctl {

/// What a client's configuration says of one server: keys and values, in the order in which they
/// are written.
using ServerEntry = std::vector<std::pair<std::string, AnyCodable>>;

/// The language of a configuration file.
enum class ConfigurationFormat { json, jsonWithComments, toml };

/// Where the entry of a server stands: under `name` in the object `servers` at the top.
struct EntryPlace {
  std::string servers;
  std::string name;
};

/// A configuration cannot be read, or is written in a way that cannot be changed without guessing.
/// The description begins with the place: "line 3, column 8: ...".
class ConfigurationFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The text of a client's configuration, in which the entry of one server is put, replaced or taken
/// out. Comments, order and white space of everything else stay, byte for byte. Its functions throw
/// ConfigurationFault.
class Configuration {
 public:
  virtual ~Configuration() = default;

  /// The entry as it is written; nothing when there is none.
  [[nodiscard]] virtual std::optional<std::string> entry() const = 0;
  /// The entry's value, as far as `says` asks for it; nothing when there is none.
  [[nodiscard]] virtual std::optional<AnyCodable> value() const = 0;
  /// How `entry` would be written here.
  [[nodiscard]] virtual std::string written(const ServerEntry& entry) const = 0;
  /// The text with `entry`, which `written` or `entry` gave, in its place.
  [[nodiscard]] virtual std::string with(std::string_view entry) const = 0;
  /// The text without the entry.
  [[nodiscard]] virtual std::string without() const = 0;

  /// Whether the entry says what `entry` does, and names no further arguments. Whatever else a
  /// person has put there does not matter.
  [[nodiscard]] bool says(const ServerEntry& entry) const;
};

/// Reads a configuration; an empty text is an empty one.
[[nodiscard]] std::unique_ptr<Configuration> readConfiguration(ConfigurationFormat format,
                                                               std::string text, EntryPlace place);

}  // namespace corvane::ctl
