#pragma once

#include <filesystem>

#include "corvanectl/commands/Session.h"
#include "corvanectl/doctor/Finding.h"
#include "corvanectl/doctor/HealthAnswer.h"

namespace corvane::ctl {

/// Whether a server that answers is of this program's version.
[[nodiscard]] Finding checkVersions(const std::string& serverVersion);

/// Whether the app is installed where the server looks for it.
[[nodiscard]] Finding checkApp(const HealthAnswer& places);

/// Whether an app that runs is the one that serves this home: that one tells here what it does.
/// Throws what Session::callTool throws.
[[nodiscard]] Finding checkRunningApp(Session& session, const HealthAnswer& places);

/// Whether the app has published its workspace, and of late. Throws what Session::callTool throws.
[[nodiscard]] Finding checkWorkspace(Session& session, const HealthAnswer& places);

}  // namespace corvane::ctl
