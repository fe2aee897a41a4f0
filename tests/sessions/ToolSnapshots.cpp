#include "tests/sessions/ToolSnapshots.h"

#include <sstream>
#include <stdexcept>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"

namespace corvane::testing {

namespace {

std::string joinLines(const AnyCodable::Array& lines) {
  std::string text;
  for (const auto& line : lines) {
    if (&line != &lines.front()) text += '\n';
    text += *line.string();
  }
  return text;
}

AnyCodable::Array splitLines(const std::string& text) {
  AnyCodable::Array lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.emplace_back(line);
  return lines;
}

}  // namespace

std::string ToolSnapshots::read(const std::filesystem::path& folder) {
  std::string descriptors;
  for (const auto& file : listVisible(folder)) {
    if (file.extension() != ".json") continue;
    AnyCodable tool = readJson(readFile(file));
    auto& members = std::get<JsonObject>(tool.value());
    const auto* description = members.findAs<AnyCodable::Array>("description");
    if (!description) throw std::runtime_error(file.string() + " has no array \"description\"");
    members.set("description", joinLines(*description));
    if (!descriptors.empty()) descriptors += ',';
    descriptors += toJson(tool);
  }
  return descriptors;
}

void ToolSnapshots::write(const AnyCodable& reply, const std::filesystem::path& folder) {
  for (AnyCodable tool : *reply.find("result")->findAs<AnyCodable::Array>("tools")) {
    auto& members = std::get<JsonObject>(tool.value());
    members.set("description", splitLines(*members.findAs<std::string>("description")));
    const std::string name = *members.findAs<std::string>("name");
    writeFileWhole(folder / (name + ".json"), indentedJson(toJson(tool)) + "\n", Access::byUmask);
  }
}

}  // namespace corvane::testing
