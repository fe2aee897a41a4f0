#pragma once

#include "CorvaneCore/authoring/rules/CheckedStep.h"

namespace corvane {

/// The rules of a top-level step's place in branching: its own condition, and its children with
/// all their rules.
void checkBranch(const CheckedStep& step);

}  // namespace corvane
