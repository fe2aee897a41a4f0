#pragma once

#include "CorvaneCore/files/Files.h"

namespace corvane {

/// Takes standard output for the protocol: the returned descriptor is the only way to it, and
/// whatever else is printed there from now on goes to standard error. Standard streams that the
/// process was started without lead nowhere. Called once, before anything is opened.
[[nodiscard]] FileDescriptor claimStandardOutput();

}  // namespace corvane
