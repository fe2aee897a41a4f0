#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/FileDescriptor.h"

namespace corvane {

/// A terminal whose keyboard and screen are in the test's hands.
class Pseudoterminal {
 public:
  explicit Pseudoterminal(unsigned short columns);

  /// The terminal's side, for what is under test.
  [[nodiscard]] int side() const { return terminal.get(); }

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
  std::string shown;
};

}  // namespace corvane
