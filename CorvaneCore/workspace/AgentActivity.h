#pragma once

#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane {

/// What Corvane.app is doing right now. While the app lives it rewrites the file at least every 20
/// seconds or so, so an older `updatedAt` means that nothing moves; the server only reads it.
struct AgentActivity {
  static constexpr std::int64_t currentSchemaVersion = 1;

  /// The agent request being executed.
  struct ActiveRequest {
    std::string requestId;
    /// What sort of request it is, as the app names it.
    std::string kind;
    Date startedAt;

    static constexpr auto fields() {
      using R = ActiveRequest;
      return FieldList(field("requestId", &R::requestId), field("kind", &R::kind),
                       field("startedAt", &R::startedAt));
    }
  };

  /// An agent request that waits behind the active one.
  struct QueuedRequest {
    std::string requestId;
    std::string kind;
    std::int64_t position = 0;

    static constexpr auto fields() {
      using R = QueuedRequest;
      return FieldList(field("requestId", &R::requestId), field("kind", &R::kind),
                       field("position", &R::position));
    }
  };

  /// The bound simulator or emulator.
  struct Device {
    std::string platform;
    std::optional<std::string> name;
    bool connected = false;

    static constexpr auto fields() {
      using R = Device;
      return FieldList(field("platform", &R::platform), field("name", &R::name),
                       field("connected", &R::connected));
    }
  };

  std::int64_t schemaVersion = currentSchemaVersion;
  /// The heartbeat.
  Date updatedAt;
  std::optional<ActiveRequest> active;
  /// First in, first out.
  std::vector<QueuedRequest> queued;
  /// Whether work that no agent asked for holds the run gate, so that agent runs queue behind it.
  bool schedulerBusy = false;
  /// Whether an interactive authoring session is live in the app.
  bool authoringActive = false;
  std::optional<Device> device;

  static constexpr auto fields() {
    using R = AgentActivity;
    return FieldList(field("schemaVersion", &R::schemaVersion), field("updatedAt", &R::updatedAt),
                     field("active", &R::active), field("queued", &R::queued),
                     field("schedulerBusy", &R::schedulerBusy),
                     field("authoringActive", &R::authoringActive), field("device", &R::device));
  }

  /// Throws EncodeError or FileError.
  void write(const AgentPaths& in) const { writeRecord(*this, in.agentActivityFile()); }
  /// The published activity; nothing when there is none or it cannot be read.
  [[nodiscard]] static std::optional<AgentActivity> read(const AgentPaths& in) {
    try {
      return readRecord<AgentActivity>(in.agentActivityFile());
    } catch (const FileError&) {
      return std::nullopt;
    } catch (const DecodeError&) {
      return std::nullopt;
    }
  }
};

extern template struct RecordCodec<AgentActivity>;

}  // namespace corvane
