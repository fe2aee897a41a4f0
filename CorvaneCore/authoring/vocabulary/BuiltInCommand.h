#pragma once

#include <array>

#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

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

}  // namespace corvane
