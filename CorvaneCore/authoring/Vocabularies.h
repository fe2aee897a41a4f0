#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// The mobile platform under test.
enum class AgentTargetPlatform { iOS, android };

template <>
struct Vocabulary<AgentTargetPlatform> {
  using Row = VocabularyRow<AgentTargetPlatform>;
  static constexpr std::array rows{
      Row{AgentTargetPlatform::iOS, "iOS"},
      Row{AgentTargetPlatform::android, "android"},
  };
};

/// What a builtIn step does.
enum class BuiltInCommand {
  none,
  terminateApplication,
  openApplication,
  openUrl,
  goHome,
  goBack,
  hitReturnKey,
  clearText,
  hitBackspaceKey,
  tapToDismiss,
};

template <>
struct Vocabulary<BuiltInCommand> {
  using Command = BuiltInCommand;
  /// How the description of an authored step is kept.
  enum class Description { asSent, trimmed, alwaysEmpty };
  /// Whether a command starts or ends the app under test.
  enum class Lifecycle { no, yes };

  struct Row {
    Command value;
    std::string_view rawValue;
    std::string_view title;
    Description description;
    Lifecycle lifecycle;
    /// What the app's editor shows in the place of a missing description; it asks for one for every
    /// command that has a placeholder.
    std::string_view placeholder;
  };
  static constexpr std::array rows{
      Row{Command::none, "none", "", Description::asSent, Lifecycle::no, ""},
      // The editor asks for a name, but authored steps leave the description empty: Corvane
      // terminates the app under test.
      Row{Command::terminateApplication, "terminateApplication", "Terminate Application",
          Description::alwaysEmpty, Lifecycle::yes, "Application name"},
      Row{Command::openApplication, "openApplication", "Open Application", Description::asSent,
          Lifecycle::yes, "Enter application name"},
      Row{Command::openUrl, "openUrl", "Open URL", Description::trimmed, Lifecycle::no,
          "Enter URL (e.g. https://example.com or $urlParam)"},
      Row{Command::goHome, "goHome", "Go Home", Description::alwaysEmpty, Lifecycle::no, ""},
      Row{Command::goBack, "goBack", "Go Back", Description::alwaysEmpty, Lifecycle::no, ""},
      Row{Command::hitReturnKey, "hitReturnKey", "Hit Return Key", Description::alwaysEmpty,
          Lifecycle::no, ""},
      Row{Command::clearText, "clearText", "Clear Text", Description::alwaysEmpty, Lifecycle::no,
          ""},
      Row{Command::hitBackspaceKey, "hitBackspaceKey", "Hit Backspace Key", Description::trimmed,
          Lifecycle::no, "Enter backspace count (e.g. 20)"},
      Row{Command::tapToDismiss, "tapToDismiss", "Tap to Dismiss", Description::alwaysEmpty,
          Lifecycle::no, ""},
  };
};

[[nodiscard]] constexpr std::string_view title(BuiltInCommand command) {
  return vocabularyRow(command).title;
}

[[nodiscard]] constexpr std::string_view placeholder(BuiltInCommand command) {
  return vocabularyRow(command).placeholder;
}

/// Whether a step with this command needs a description in the app's editor.
[[nodiscard]] constexpr bool needsDescription(BuiltInCommand command) {
  return !placeholder(command).empty();
}

/// Whether the command starts or ends the app under test.
[[nodiscard]] constexpr bool isLifecycle(BuiltInCommand command) {
  return vocabularyRow(command).lifecycle == Vocabulary<BuiltInCommand>::Lifecycle::yes;
}

/// Whether the command may run in the middle of a test, where the app must be neither ended nor
/// started: in a branch, or to repair the test.
[[nodiscard]] constexpr bool mayRunMidTest(BuiltInCommand command) {
  return command != BuiltInCommand::none && !isLifecycle(command);
}

/// The part of the screen in which a step looks for its target.
enum class RegionOfInterest {
  all,
  content,
  top20,
  bottom15,
  top33,
  bottom33,
  contentLeading50,
  contentTrailing50,
  contentCenter33,
  top20Leading50,
  top20Trailing50,
  top20Center33,
  bottom15Leading50,
  bottom15Trailing50,
  bottom15Center33,
  top33Leading50,
  top33Trailing50,
  top33Center33,
  bottom33Leading50,
  bottom33Trailing50,
  bottom33Center33,
};

/// A rectangle in normalised screen coordinates: 0 to 1, y measured from the top.
struct NormalizedRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

template <>
struct Vocabulary<RegionOfInterest> {
  using Region = RegionOfInterest;

  /// A stretch of the screen along one axis.
  struct Extent {
    double from;
    double to;
  };
  static constexpr Extent whole{0, 1};
  static constexpr Extent content{0.125, 0.875};
  static constexpr Extent top20{0, 0.2};
  static constexpr Extent bottom15{0.85, 1};
  static constexpr Extent top33{0, 0.33};
  static constexpr Extent bottom33{0.67, 1};
  static constexpr Extent leading50{0, 0.5};
  static constexpr Extent trailing50{0.5, 1};
  static constexpr Extent center33{0.335, 0.665};

  struct Row {
    Region value;
    std::string_view rawValue;
    Extent vertical;
    Extent horizontal;
  };
  static constexpr std::array rows{
      Row{Region::all, "all", whole, whole},
      Row{Region::content, "content", content, whole},
      Row{Region::top20, "top20", top20, whole},
      Row{Region::bottom15, "bottom15", bottom15, whole},
      Row{Region::top33, "top33", top33, whole},
      Row{Region::bottom33, "bottom33", bottom33, whole},
      Row{Region::contentLeading50, "contentLeading50", content, leading50},
      Row{Region::contentTrailing50, "contentTrailing50", content, trailing50},
      Row{Region::contentCenter33, "contentCenter33", content, center33},
      Row{Region::top20Leading50, "top20Leading50", top20, leading50},
      Row{Region::top20Trailing50, "top20Trailing50", top20, trailing50},
      Row{Region::top20Center33, "top20Center33", top20, center33},
      Row{Region::bottom15Leading50, "bottom15Leading50", bottom15, leading50},
      Row{Region::bottom15Trailing50, "bottom15Trailing50", bottom15, trailing50},
      Row{Region::bottom15Center33, "bottom15Center33", bottom15, center33},
      Row{Region::top33Leading50, "top33Leading50", top33, leading50},
      Row{Region::top33Trailing50, "top33Trailing50", top33, trailing50},
      Row{Region::top33Center33, "top33Center33", top33, center33},
      Row{Region::bottom33Leading50, "bottom33Leading50", bottom33, leading50},
      Row{Region::bottom33Trailing50, "bottom33Trailing50", bottom33, trailing50},
      Row{Region::bottom33Center33, "bottom33Center33", bottom33, center33},
  };
};

/// The rectangle that a region covers.
[[nodiscard]] constexpr NormalizedRect normalizedRect(RegionOfInterest region) {
  const auto& row = vocabularyRow(region);
  return {row.horizontal.from, row.vertical.from, row.horizontal.to - row.horizontal.from,
          row.vertical.to - row.vertical.from};
}

/// Whether AI segmentation helps a step to find its target.
enum class AISegmentationMode { none, automatic, forceFresh };

template <>
struct Vocabulary<AISegmentationMode> {
  using Row = VocabularyRow<AISegmentationMode>;
  static constexpr std::array rows{
      Row{AISegmentationMode::none, "none"},
      Row{AISegmentationMode::automatic, "auto"},
      Row{AISegmentationMode::forceFresh, "forceFresh"},
  };
};

/// Which way a scroll step moves through the contents.
enum class ScrollDirection { automatic, up, down, left, right };

template <>
struct Vocabulary<ScrollDirection> {
  using Row = VocabularyRow<ScrollDirection>;
  static constexpr std::array rows{
      Row{ScrollDirection::automatic, "auto"}, Row{ScrollDirection::up, "up"},
      Row{ScrollDirection::down, "down"},      Row{ScrollDirection::left, "left"},
      Row{ScrollDirection::right, "right"},
  };
};

/// How a scroll step looks for its target: item by item, or anywhere on the screen.
enum class ScrollSearchType { itemScan, general };

template <>
struct Vocabulary<ScrollSearchType> {
  using Row = VocabularyRow<ScrollSearchType>;
  static constexpr std::array rows{
      Row{ScrollSearchType::itemScan, "itemScan"},
      Row{ScrollSearchType::general, "general"},
  };
};

/// How fast a scroll step moves.
enum class ScrollSpeed { automatic, ultraSlow, slow, normal, fast, ultraFast };

template <>
struct Vocabulary<ScrollSpeed> {
  using Row = VocabularyRow<ScrollSpeed>;
  static constexpr std::array rows{
      Row{ScrollSpeed::automatic, "auto"}, Row{ScrollSpeed::ultraSlow, "ultraSlow"},
      Row{ScrollSpeed::slow, "slow"},      Row{ScrollSpeed::normal, "normal"},
      Row{ScrollSpeed::fast, "fast"},      Row{ScrollSpeed::ultraFast, "ultraFast"},
  };
};

/// Whether a drag step is described in words or given as coordinates.
enum class DragMode { automatic, hardcoded };

template <>
struct Vocabulary<DragMode> {
  using Row = VocabularyRow<DragMode>;
  static constexpr std::array rows{
      Row{DragMode::automatic, "auto"},
      Row{DragMode::hardcoded, "hardcoded"},
  };
};

/// Which outcome of the parent step runs a branch child.
enum class PreviousStepCondition { previousSucceeded, previousFailed };

template <>
struct Vocabulary<PreviousStepCondition> {
  using Row = VocabularyRow<PreviousStepCondition>;
  static constexpr std::array rows{
      Row{PreviousStepCondition::previousSucceeded, "previousSucceeded"},
      Row{PreviousStepCondition::previousFailed, "previousFailed"},
  };
};

/// Whether Corvane adapts a test while it runs. (The editor knows a third, per-step mode, which the
/// payload cannot express.)
enum class SelfHealingMode { off, fullTest };

template <>
struct Vocabulary<SelfHealingMode> {
  using Row = VocabularyRow<SelfHealingMode>;
  static constexpr std::array rows{
      Row{SelfHealingMode::off, "off"},
      Row{SelfHealingMode::fullTest, "fullTest"},
  };
};

}  // namespace corvane
