#pragma once

#include <sanitizer/common_interface_defs.h>

#include <cstdlib>
#include <string>
#include <string_view>

namespace corvane::testing {

/// Ends a fuzzer with a finding unless `holds`. `promise` says what should have held; it reaches
/// the report even while standard error is closed to the code under test.
inline void require(bool holds, std::string_view promise) {
  if (holds) return;
  __sanitizer_report_error_summary(("broken promise: " + std::string(promise)).c_str());
  std::abort();
}

}  // namespace corvane::testing
