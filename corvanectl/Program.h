#pragma once

#include "corvanectl/ExitStatus.h"
#include "corvanectl/commands/Invocation.h"
#include "corvanectl/terminal/Console.h"

namespace corvane {

/// Carries out what the user asked for and turns every failure into a message on standard error and
/// an exit status. Only what ends the program by a signal passes through: Interrupted,
/// OutputClosed. By then the server has ended and the console's line is free.
ExitStatus runProgram(const Invocation& invocation, Console& console, Interruption& interruption);

}  // namespace corvane
