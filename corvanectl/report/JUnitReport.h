#pragma once

#include <string>

#include "corvanectl/report/PictureSource.h"
#include "corvanectl/report/Report.h"

namespace corvane::ctl {

/// The report in the XML that build servers read as JUnit's: a suite with a case for each test. A
/// failed one has the reason and the steps in its `failure`; a case that neither passed nor failed
/// has an `error`. What no test tells (a build that failed, a request that was blocked) is a case
/// of its own, so that there is a failure or an error exactly when the request did not go well.
/// Pictures are named by their `files`, as attachments, or else by the folder of the captures.
[[nodiscard]] std::string junitReport(const Report& report, const PictureFiles& files);

}  // namespace corvane::ctl
