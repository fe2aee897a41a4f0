#pragma once

#include <string>

namespace corvane::testing {

/// The description of the Error that `act` throws; a text that no error has when it throws none.
/// Any other exception passes through and fails the test.
template <class Error, class Act>
[[nodiscard]] std::string errorText(Act act) {
  try {
    act();
  } catch (const Error& error) {
    return error.what();
  }
  return "(nothing was thrown)";
}

}  // namespace corvane::testing
