#include "corvanectl/setup/Configuration.h"

#include <algorithm>

#include "corvanectl/setup/JsonConfiguration.h"
#include "corvanectl/setup/TomlConfiguration.h"

namespace corvane::ctl {

bool Configuration::says(const ServerEntry& entry) const {
  const auto there = value();
  if (!there || !there->object()) return false;
  const auto isEqual = [&](const auto& member) {
    const AnyCodable* found = there->find(member.first);
    return found && *found == member.second;
  };
  const auto* arguments = there->findAs<AnyCodable::Array>("args");
  return std::ranges::all_of(entry, isEqual) && (!arguments || arguments->empty());
}

std::unique_ptr<Configuration> readConfiguration(ConfigurationFormat format, std::string text,
                                                 EntryPlace place) {
  if (format == ConfigurationFormat::toml) {
    return std::make_unique<TomlConfiguration>(std::move(text), std::move(place));
  }
  const auto comments = format == ConfigurationFormat::jsonWithComments
                            ? JsonConfiguration::Comments::allowed
                            : JsonConfiguration::Comments::refused;
  return std::make_unique<JsonConfiguration>(std::move(text), std::move(place), comments);
}

}  // namespace corvane::ctl
