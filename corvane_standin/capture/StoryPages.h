#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "corvane_standin/capture/StepWords.h"

namespace corvane::standin {

/// What led to a page.
struct Arrival {
  enum class Way { start, closed, opened, tab, product, row, button, search, otherSteps, back };

  Way way = Way::start;
  /// The label of what was tapped.
  std::string label;
};

/// Steps that are taken on one page of an app, one after the other: all but the last leave it in
/// sight.
struct PageSteps {
  std::size_t first = 0;
  std::size_t end = 0;
  Arrival arrival;

  [[nodiscard]] bool has(std::size_t step) const { return step >= first && step < end; }
};

/// Divides the steps of a test into pages. The last page is the one that the last step leads to or
/// leaves in sight, and may be without steps.
[[nodiscard]] std::vector<PageSteps> pagesOf(const std::vector<StepWords>& steps);

/// What a step of type builtIn has the phone do.
enum class PhoneCommand { other, closeApp, openApp, goBack };
[[nodiscard]] PhoneCommand phoneCommand(const StepWords& step);

}  // namespace corvane::standin
