#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "corvane_standin/capture/PageContents.h"
#include "corvane_standin/capture/PageView.h"
#include "corvane_standin/capture/Screen.h"
#include "corvane_standin/capture/StepWords.h"
#include "corvane_standin/capture/StoryPages.h"
#include "corvane_standin/runs/RunPlan.h"

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
    std::string underRow;
    PageKind kind = PageKind::same;
  };

  void addPage(const PageSteps& pageSteps, const PlannedTest& test);
  [[nodiscard]] StorySoFar storyUntil(const PageSteps& page, const PlannedTest& test) const;
  /// Puts what the page's steps speak of on it, and finds out what they are about.
  void nameParts(Page& page, const PlannedTest& test) const;
  /// The page as it is before `step`, or after its last step.
  [[nodiscard]] Screen screenOf(const Page& page, std::size_t step) const;

  std::vector<StepWords> steps;
  Screen firstScreen;
  bool aboutWalks = false;
  std::vector<Page> pages;
};

}  // namespace corvane::standin
