#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/Files.h"

namespace corvane {

/// A terminal whose keyboard and screen are in the test's hands.
class Pseudoterminal {
 public:
  explicit Pseudoterminal(unsigned short columns);

  /// The terminal's side, for what is under test.
  [[nodiscard]] int side() const { return terminal.get(); }

  /// A handle on that side of its own, which keeps the terminal alive when programs have ended.
  [[nodiscard]] FileDescriptor anotherSide() const;

  /// What kind of terminal the program is told it has; xterm unless this was called.
  void setKind(std::string_view name) { kind = name; }

  /// Starts corvanectl as the foreground program of this terminal; gives its process id. The
  /// terminal's side is closed here afterwards.
  [[nodiscard]] int start(const std::vector<std::string>& arguments);

  void type(std::string_view keys);
  /// All that was shown so far, read until `text` is in it or nothing more comes.
  const std::string& readUntil(std::string_view text);
  /// All that was shown, read until the program has closed the terminal.
  const std::string& readAll();

 private:
  bool readMore();

  FileDescriptor keyboard;
  FileDescriptor terminal;
  std::string kind = "xterm";
  std::string shown;
};

/// Whether what is typed at a terminal is shown and can be edited, as it is before programs change
/// that.
[[nodiscard]] bool hasUsualModes(const FileDescriptor& terminalSide);
/// How many bytes were typed at a terminal that no program has read.
[[nodiscard]] int unreadInput(const FileDescriptor& terminalSide);

}  // namespace corvane
