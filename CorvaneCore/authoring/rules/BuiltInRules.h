#pragma once

#include "CorvaneCore/authoring/rules/CheckedStep.h"

namespace corvane {

/// The rules of a builtIn step and of each of its commands.
void checkBuiltIn(const CheckedStep& step);

}  // namespace corvane
