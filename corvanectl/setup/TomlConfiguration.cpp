#include "corvanectl/setup/TomlConfiguration.h"

#include <toml++/toml.h>
#include <algorithm>
#include <sstream>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"

namespace corvane::ctl {

namespace {

std::string describe(const toml::source_position& at) {
  return "line " + std::to_string(at.line) + ", column " + std::to_string(at.column);
}

toml::table parse(std::string_view text) {
  try {
    return toml::parse(text);
  } catch (const toml::parse_error& error) {
    throw ConfigurationFault(describe(error.source().begin) +
                             ": not valid TOML: " + std::string(error.description()));
  }
}

/// The last line that a node or anything in it stands on.
toml::source_index lastLine(const toml::node& node) {
  toml::source_index last = std::max(node.source().begin.line, node.source().end.line);
  if (const auto* table = node.as_table()) {
    for (const auto& [key, value] : *table) last = std::max(last, lastLine(value));
  }
  return last;
}

/// Where this line, counted from 1, begins; the size of the text for those behind the last.
std::size_t lineBegin(std::string_view text, toml::source_index line) {
  std::size_t begin = 0;
  for (; line > 1 && begin < text.size(); --line) {
    begin = std::min(text.find('\n', begin), text.size() - 1) + 1;
  }
  return begin;
}

}  // namespace

TomlConfiguration::TomlConfiguration(std::string givenText, EntryPlace givenPlace)
    : text(std::move(givenText)),
      place(std::move(givenPlace)),
      lineEnd(text.find("\r\n") < text.find('\n') ? "\r\n" : "\n") {
  read();
}

void TomlConfiguration::read() {
  const toml::table root = parse(text);
  const toml::node* servers = root.get(place.servers);
  if (!servers) return;
  const toml::table* table = servers->as_table();
  const toml::node* entry = table ? table->get(place.name) : nullptr;
  const toml::node& relevant = entry ? *entry : *servers;
  const auto at = relevant.source().begin;
  if (!table || table->is_inline() || (entry && !entry->is_table())) {
    throw ConfigurationFault(describe(at) + ": '" + place.servers + "' is no table of tables");
  }
  if (!entry) return;
  begin = lineBegin(text, at.line);
  end = lineBegin(text, lastLine(*entry) + 1);
  if (!std::string_view(text).substr(begin).starts_with(header())) {
    throw ConfigurationFault(describe(at) + ": '" + place.name + "' is no table of its own, " +
                             header());
  }
  std::ostringstream json;
  json << toml::json_formatter(*entry->as_table());
  there = readJson(json.str());
}

std::optional<std::string> TomlConfiguration::entry() const {
  if (!there) return std::nullopt;
  return text.substr(begin, end - begin);
}

std::string TomlConfiguration::header() const {
  return "[" + place.servers + "." + place.name + "]";
}

std::string TomlConfiguration::written(const ServerEntry& entry) const {
  std::string block = header() + lineEnd;
  // The strings and numbers of JSON are such of TOML.
  for (const auto& [key, value] : entry) block += key + " = " + toJson(value) + lineEnd;
  return block;
}

std::string TomlConfiguration::with(std::string_view entry) const {
  if (there) return checked(text.substr(0, begin).append(entry) + text.substr(end));
  std::string changed = text;
  if (!changed.empty() && !changed.ends_with('\n')) changed += lineEnd;
  if (!changed.empty()) changed += lineEnd;
  return checked(changed.append(entry));
}

std::string TomlConfiguration::without() const {
  std::size_t from = begin;
  // With the empty line that `with` puts before it.
  if (std::string_view(text).substr(0, from).ends_with(lineEnd + lineEnd)) from -= lineEnd.size();
  return checked(text.substr(0, from) + text.substr(end));
}

std::string TomlConfiguration::checked(std::string changed) const {
  const auto others = [this](std::string_view configuration) {
    toml::table root = parse(configuration);
    if (toml::table* servers = root[place.servers].as_table()) {
      servers->erase(place.name);
      if (servers->empty()) root.erase(place.servers);
    }
    return root;
  };
  if (others(changed) != others(text)) {
    throw ConfigurationFault("the table " + header() + " stands among others");
  }
  return changed;
}

}  // namespace corvane::ctl
