#pragma once

#include <filesystem>
#include <string_view>

namespace corvane {

/// What differs between platforms about the app's process. One implementation per platform; each
/// call asks the system afresh and may be made from any thread.
namespace AppProcess {

/// Whether a process whose command line contains `text` runs. False when that cannot be told.
[[nodiscard]] bool isRunning(std::string_view text);

/// Starts an application bundle on its own, without waiting for it: it inherits no descriptor,
/// outlives this process, and leaves no zombie. By its return isRunning tells of the application,
/// unless the system itself sees to it that one is not started twice. Throws std::system_error when
/// it cannot be started.
void start(const std::filesystem::path& bundle);

}  // namespace AppProcess

}  // namespace corvane
