#pragma once

#include "CorvaneCore/authoring/rules/CheckedStep.h"

/// The rules of the step types that say what they do in their parameters.
namespace corvane {

void checkDelay(const CheckedStep& step);
void checkWaitToLoad(const CheckedStep& step);
void checkScroll(const CheckedStep& step);
void checkDrag(const CheckedStep& step);

}  // namespace corvane
