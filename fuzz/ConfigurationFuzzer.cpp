#include <cstdint>
#include <string>

#include "CorvaneCore/json/JsonReader.h"
#include "corvanectl/setup/Configuration.h"
#include "corvanectl/setup/JsonComments.h"
#include "fuzz/Require.h"

namespace {

using namespace corvane;
using namespace corvane::ctl;
using corvane::testing::require;

const EntryPlace place{"servers", "corvane"};
const ServerEntry entry{{"type", "stdio"}, {"command", "/bin/corvane-mcp"}};

/// What a configuration in JSON says, with an object of servers.
AnyCodable meaningOf(ConfigurationFormat format, const std::string& text) {
  const bool hasComments = format == ConfigurationFormat::jsonWithComments;
  const std::string plain = hasComments ? withoutLastCommas(withoutComments(text)) : text;
  const bool isEmpty = plain.find_first_not_of(" \t\r\n") == std::string::npos;
  AnyCodable meaning = isEmpty ? AnyCodable(JsonObject()) : readJson(plain);
  auto& root = std::get<JsonObject>(meaning.value());
  if (!root.find(place.servers)) root.set(place.servers, JsonObject());
  return meaning;
}

void checkMeaning(ConfigurationFormat format, const std::string& text, const std::string& with,
                  const std::string& without) {
  AnyCodable expected = meaningOf(format, text);
  const bool hadEntry = expected.find(place.servers)->find(place.name) != nullptr;
  if (!hadEntry) require(meaningOf(format, without) == expected, "an entry goes without a trace");
  auto& root = std::get<JsonObject>(expected.value());
  auto& servers = std::get<JsonObject>(root.find(place.servers)->value());
  JsonObject members;
  for (const auto& [key, value] : entry) members.set(key, value);
  servers.set(place.name, members);
  require(meaningOf(format, with) == expected, "an entry comes, and nothing else changes");
}

void check(ConfigurationFormat format, const std::string& text) {
  const auto configuration = readConfiguration(format, text, place);
  const std::string with = configuration->with(configuration->written(entry));
  const auto changed = readConfiguration(format, with, place);
  require(changed->says(entry), "what is put in is there");
  require(changed->with(*changed->entry()) == with, "what is there is put in without a change");
  const std::string without = changed->without();
  (void)readConfiguration(format, without, place);
  const bool hasMark = text.starts_with("\xEF\xBB\xBF");
  if (format != ConfigurationFormat::toml && !hasMark) checkMeaning(format, text, with, without);
}

}  // namespace

/// The first byte says which format the rest is in.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using enum ConfigurationFormat;
  constexpr ConfigurationFormat formats[] = {json, jsonWithComments, toml};
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  try {
    check(formats[data[0] % 3], text);
  } catch (const ConfigurationFault& fault) {
    require(*fault.what() != '\0', "a refusal says why");
  }
  return 0;
}
