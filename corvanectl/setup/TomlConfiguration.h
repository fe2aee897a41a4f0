#pragma once

#include <cstddef>

#include "corvanectl/setup/Configuration.h"

namespace corvane::ctl {

/// A configuration in TOML. The entry is a table of its own, `[servers.name]`; one that is written
/// otherwise is refused.
class TomlConfiguration final : public Configuration {
 public:
  TomlConfiguration(std::string text, EntryPlace place);

  [[nodiscard]] std::optional<std::string> entry() const override;
  [[nodiscard]] std::optional<AnyCodable> value() const override { return there; }
  [[nodiscard]] std::string written(const ServerEntry& entry) const override;
  [[nodiscard]] std::string with(std::string_view entry) const override;
  [[nodiscard]] std::string without() const override;

 private:
  void read();
  [[nodiscard]] std::string header() const;
  /// `changed`, unless it says something else of anything but the entry.
  [[nodiscard]] std::string checked(std::string changed) const;

  std::string text;
  EntryPlace place;
  std::string lineEnd;
  std::optional<AnyCodable> there;
  /// The lines of the entry, in bytes of the text: those of its table and of tables in it.
  std::size_t begin = 0;
  std::size_t end = 0;
};

}  // namespace corvane::ctl
