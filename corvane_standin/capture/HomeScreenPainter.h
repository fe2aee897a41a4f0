#pragma once

#include "corvane_standin/capture/Brush.h"
#include "corvane_standin/capture/PhoneFrame.h"

namespace corvane::standin {

/// Paints the phone's own screen of app icons; gives the place of the icon of the screen's app.
Rect paintHomeScreen(const Screen& screen, const PhoneFrame& frame, const Brush& brush);

}  // namespace corvane::standin
