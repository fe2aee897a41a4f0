#include "corvane_mcp/workspace/PublishedContext.h"

#include <algorithm>
#include <array>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

constexpr std::array<std::string_view, 6> keptMembers{"appVersion", "currentProjectName",
                                                      "device",     "schemaVersion",
                                                      "updatedAt",  "userDefinedInteractions"};

bool isKept(std::string_view member) {
  return std::find(keptMembers.begin(), keptMembers.end(), member) != keptMembers.end();
}

/// How many elements the array here has; 0 for a value of another kind, which stands for none.
std::int64_t countElements(JsonCursor& cursor) {
  std::int64_t count = 0;
  if (!cursor.atArray()) {
    cursor.skip();
    return count;
  }
  cursor.elements([&] {
    ++count;
    cursor.skip();
  });
  return count;
}

PublishedContext::Project readProject(JsonCursor& cursor) {
  PublishedContext::Project project;
  project.begin = cursor.position();
  cursor.members([&](std::string_view key) {
    if (key == "name") {
      project.name = cursor.read();
    } else if (key == "platform") {
      project.platform = cursor.read();
    } else if (key == "tests") {
      project.testCount = countElements(cursor);
    } else {
      cursor.skip();
    }
  });
  project.end = cursor.position();
  return project;
}

std::vector<PublishedContext::Project> readProjects(JsonCursor& cursor) {
  std::vector<PublishedContext::Project> projects;
  if (!cursor.atArray()) {
    cursor.skip();
    return projects;
  }
  cursor.elements([&] {
    if (cursor.atObject()) {
      projects.push_back(readProject(cursor));
    } else {
      cursor.skip();
    }
  });
  return projects;
}

}  // namespace

std::optional<PublishedContext> PublishedContext::read(const std::filesystem::path& file) {
  try {
    return PublishedContext(readFile(file));
  } catch (const FileError&) {
    return std::nullopt;
  } catch (const DecodeError&) {
    return std::nullopt;
  }
}

PublishedContext::PublishedContext(std::string contents) : text(std::move(contents)) {
  JsonReader().read(text, [this](JsonCursor& cursor) {
    if (!cursor.atObject()) throw DecodeError("expected an object");
    cursor.members([&](std::string_view key) {
      if (key == "projects") {
        listed = readProjects(cursor);
      } else if (isKept(key)) {
        known.set(key, cursor.read());
      } else {
        cursor.skip();
      }
    });
  });
}

const PublishedContext::Project* PublishedContext::find(std::string_view name) const {
  const std::string wanted = foldCase(name);
  const auto found = std::find_if(listed.begin(), listed.end(), [&](const Project& project) {
    const auto* given = project.name.string();
    return given && foldCase(*given) == wanted;
  });
  return found == listed.end() ? nullptr : &*found;
}

AnyCodable PublishedContext::whole(const Project& project) const {
  return readJson(std::string_view(text).substr(project.begin, project.end - project.begin));
}

}  // namespace corvane
