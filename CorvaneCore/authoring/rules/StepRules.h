#pragma once

#include "CorvaneCore/authoring/rules/CheckedStep.h"

namespace corvane {

/// Whether a top-level step is one that a composed test may hold.
void checkComposition(const CheckedStep& step);

/// The rules that belong to the type of a step, at the top level and in branches alike.
void checkStep(const CheckedStep& step);

}  // namespace corvane
