#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/files/RecordFile.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane {

/// Asks Corvane.app to change what it knows without running a test: the user's library of building
/// blocks (UDIs), or a project's world map. The app consumes the file and answers with a result
/// file of the same id.
struct AgentLibraryRequest {
  static constexpr std::int64_t currentSchemaVersion = 1;
  static constexpr std::string_view fileSuffix = ".libraryrequest.json";

  enum class Action { extractUdi, deleteUdi, resetWorldMap };

  std::int64_t schemaVersion = currentSchemaVersion;
  std::string requestId;
  /// The source test's project, or the project whose map is reset; empty for a deletion, as the
  /// library belongs to the user.
  std::string projectName;
  Action action{};
  /// The source test of an extraction.
  std::optional<std::string> testName;
  std::optional<std::string> testId;
  /// The range of an extraction: 0-based, both ends included. 0 for the other actions.
  std::int64_t fromStep = 0;
  std::int64_t toStep = 0;
  /// The building block to make or to delete; empty for a reset.
  std::string udiName;
  /// Whether an extraction may replace a building block of its name.
  std::optional<bool> overwrite;
  std::optional<std::string> clientName;
  Date createdAt;

  static constexpr auto fields() {
    using R = AgentLibraryRequest;
    return FieldList(field("schemaVersion", &R::schemaVersion), field("requestId", &R::requestId),
                     field("projectName", &R::projectName), field("action", &R::action),
                     field("testName", &R::testName), field("testId", &R::testId),
                     field("fromStep", &R::fromStep), field("toStep", &R::toStep),
                     field("udiName", &R::udiName), field("overwrite", &R::overwrite),
                     field("clientName", &R::clientName), field("createdAt", &R::createdAt));
  }

  /// The place of the request file; the id is used exactly as given.
  [[nodiscard]] static std::filesystem::path fileURL(std::string_view requestId,
                                                     const AgentPaths& in) {
    return in.agentRunRequestsDirectory() / std::string(requestId).append(fileSuffix);
  }
  /// Throws EncodeError or FileError.
  void write(const AgentPaths& in) const { writeRecord(*this, fileURL(requestId, in)); }
  /// Throws FileError or DecodeError. Any schema version is accepted.
  [[nodiscard]] static AgentLibraryRequest read(const std::filesystem::path& from) {
    return readRecord<AgentLibraryRequest>(from);
  }
};

template <>
struct Vocabulary<AgentLibraryRequest::Action> {
  using Action = AgentLibraryRequest::Action;
  static constexpr std::array rows{
      VocabularyRow<Action>{Action::extractUdi, "extractUdi"},
      VocabularyRow<Action>{Action::deleteUdi, "deleteUdi"},
      VocabularyRow<Action>{Action::resetWorldMap, "resetWorldMap"},
  };
};

extern template struct RecordCodec<AgentLibraryRequest>;

}  // namespace corvane
