#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/capture/CaptureSession.h"
#include "corvane_standin/runs/TestRun.h"
#include "corvane_standin/steps/Steps.h"
#include "corvane_standin/story/Screen.h"
#include "corvane_standin/story/StoryPages.h"

namespace corvane::standin {

/// Makes up the screens that a test comes by: pages on which there is what its steps speak of, in
/// the state that the steps before have brought about.
class ScreenStory {
 public:
  /// `appName` is what the app is called, on `platform` as results have it.
  ScreenStory(const PlannedTest& test, std::string appName, const std::string& platform);

  /// What the phone shows before a step, or after the last one, with what the step is going to
  /// touch as its target.
  [[nodiscard]] Screen screenAt(std::size_t step) const;
  [[nodiscard]] std::size_t stepCount() const { return steps.size(); }
  [[nodiscard]] const StepWords& words(std::size_t step) const { return steps[step]; }

 private:
  struct Page {
    PageSteps steps;
    Screen screen;
    /// What each of its steps is about; nothing when it is about nothing that is there.
    std::vector<std::optional<NamedPart>> subjects;
    /// The button that a swipe uncovers on this page; empty when nothing is swiped.
    std::string underRow;
    PageKind kind = PageKind::same;
  };

  void addPage(const PageSteps& pageSteps, const PlannedTest& test);
  [[nodiscard]] StorySoFar storyUntil(const PageSteps& page, const PlannedTest& test) const;
  [[nodiscard]] std::string buttonUnderRow(const PageSteps& page) const;
  /// Puts what the page's steps speak of on it, and finds out what they are about.
  void nameParts(Page& page, const PlannedTest& test) const;
  /// The page as it is before `step`, or after its last step.
  [[nodiscard]] Screen screenOf(const Page& page, std::size_t step) const;

  std::vector<StepWords> steps;
  Screen firstScreen;
  bool aboutWalks = false;
  std::vector<Page> pages;
};

/// Where a step touches the screen, in fractions of it: `target`, which it speaks of, or for a
/// scroll the middle. Empty for a step that touches nothing, or whose target is not there.
[[nodiscard]] std::vector<Touch> touchesOf(const StepWords& step,
                                           const std::optional<Rect>& target);

}  // namespace corvane::standin
