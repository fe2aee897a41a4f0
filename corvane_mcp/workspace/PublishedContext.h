#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane {

/// What Corvane.app has published about the workspace, read as plain JSON so that whatever a newer
/// app adds passes through. Workspaces are large and an answer needs one project of many: of each
/// project only its summary is kept, and where in the text it stands.
class PublishedContext {
 public:
  struct Project {
    /// As they stand in the file; a name or platform that is null counts as absent.
    AnyCodable name;
    AnyCodable platform;
    std::int64_t testCount = 0;
    /// The project's text in the file: where it begins and where what follows it does.
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  /// Nothing when the file cannot be read or holds no JSON object.
  [[nodiscard]] static std::optional<PublishedContext> read(const std::filesystem::path& file);

  /// The members beside the projects.
  [[nodiscard]] const JsonObject& members() const { return known; }
  /// The entries of `projects` that are objects, in the order of the file.
  [[nodiscard]] const std::vector<Project>& projects() const { return listed; }
  /// The first project of this name, whatever its case; nullptr when there is none.
  [[nodiscard]] const Project* find(std::string_view name) const;
  /// Everything the file says of one of its projects.
  [[nodiscard]] AnyCodable whole(const Project& project) const;

 private:
  explicit PublishedContext(std::string text);

  std::string text;
  JsonObject known;
  std::vector<Project> listed;
};

}  // namespace corvane
