#pragma once

#include <string>
#include <vector>

namespace corvane::ctl {

/// What one look at the installation found.
struct Finding {
  /// What was looked at, the same word in every release.
  std::string check;
  bool well = false;
  /// What was found, in a sentence without its full stop.
  std::string text;
  /// The command that mends it; empty when nothing is wrong.
  std::string mend;
};

using Findings = std::vector<Finding>;

/// A finding that is well.
[[nodiscard]] inline Finding well(std::string check, std::string text) {
  return {std::move(check), true, std::move(text), {}};
}

/// A finding of something wrong.
[[nodiscard]] inline Finding wrong(std::string check, std::string text, std::string mend) {
  return {std::move(check), false, std::move(text), std::move(mend)};
}

}  // namespace corvane::ctl
