#pragma once

#include <filesystem>

#include "corvanectl/system/Interruption.h"
#include "corvanectl/trial/TrialHome.h"

namespace corvane::ctl {

/// Turns this process into the server of a trial, whose home it has entered. Throws ProtocolError
/// when that is not possible.
[[noreturn]] void becomeServer(const TrialHome& home, const std::filesystem::path& server);

/// Ends the servers of a trial: a client's would start the stand-in again. Throws TrialFault,
/// FileError and Interrupted.
void stopServers(const TrialHome& home, Interruption& interruption, Deadline deadline);

}  // namespace corvane::ctl
