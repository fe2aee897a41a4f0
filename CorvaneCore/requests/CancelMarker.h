#pragma once

#include <string>
#include <string_view>

#include "CorvaneCore/files/RecordFile.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane {

/// Asks Corvane.app to abort a request it has already taken. The app reacts to the presence of the
/// file; its contents only say when and for which request it was dropped.
struct CancelMarker {
  static constexpr std::int64_t currentSchemaVersion = 1;
  static constexpr std::string_view fileSuffix = ".cancel";

  std::int64_t schemaVersion = currentSchemaVersion;
  std::string requestId;
  Date createdAt;

  static constexpr auto fields() {
    using R = CancelMarker;
    return FieldList(field("schemaVersion", &R::schemaVersion), field("requestId", &R::requestId),
                     field("createdAt", &R::createdAt));
  }

  [[nodiscard]] static std::filesystem::path fileURL(std::string_view requestId,
                                                     const AgentPaths& in) {
    return in.agentRunRequestsDirectory() / std::string(requestId).append(fileSuffix);
  }
  /// Throws EncodeError or FileError.
  void write(const AgentPaths& in) const { writeRecord(*this, fileURL(requestId, in)); }
};

extern template struct RecordCodec<CancelMarker>;

}  // namespace corvane
