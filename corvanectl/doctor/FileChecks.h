#pragma once

#include "corvanectl/doctor/Finding.h"
#include "corvanectl/doctor/HealthAnswer.h"

namespace corvane::ctl {

/// Whether the folders that the server and the app share, and the log's, can be written by this
/// user and by nobody else.
[[nodiscard]] Findings checkFolders(const HealthAnswer& places);

/// Whether requests wait that the app should long have taken.
[[nodiscard]] Finding checkWaitingRequests(const HealthAnswer& places);

/// Whether the log file can be written, and gives way to a fresh one when it has grown.
[[nodiscard]] Finding checkLog(const HealthAnswer& places);

}  // namespace corvane::ctl
