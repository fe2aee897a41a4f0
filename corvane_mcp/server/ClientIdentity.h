#pragma once

#include <mutex>
#include <optional>
#include <string>

namespace corvane {

/// The agent's self-reported name, which request files carry so that the app can show who asked.
/// One per process; may be used from any thread.
class ClientIdentity {
 public:
  /// Absent until a client has named itself.
  [[nodiscard]] std::optional<std::string> name() const {
    const std::scoped_lock lock(mutex);
    return current;
  }
  void setName(std::string name) {
    const std::scoped_lock lock(mutex);
    current = std::move(name);
  }

 private:
  mutable std::mutex mutex;
  std::optional<std::string> current;
};

}  // namespace corvane
