#pragma once

#include <cstddef>
#include <functional>

#include "corvanectl/report/Html.h"
#include "corvanectl/report/PictureSource.h"
#include "corvanectl/report/Report.h"

namespace corvane::ctl {

/// Called before each step with the number of steps that are written.
using OnStep = std::function<void(std::size_t written)>;

/// Writes the report as one page that needs nothing else: every test and step, with the pictures
/// before and after the step side by side. The pictures of a step are asked for when its turn
/// comes and are handed on with it, so that only those of one step are in memory. Throws what
/// `pictures`, `append` and `onStep` throw.
void writeHtmlReport(const Report& report, const PictureSource& pictures, Html::Append append,
                     const OnStep& onStep = {});

}  // namespace corvane::ctl
