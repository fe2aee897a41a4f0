#pragma once

#include <cstddef>
#include <string_view>

#include "corvanectl/system/Interruption.h"

namespace corvane {

/// Whoever read what the program writes has gone. Ends the program, quietly, and so is no
/// std::exception.
struct OutputClosed {};

/// Standard output or standard error. Writes go out at once; a reader that stalls can be left with
/// Ctrl-C.
class TextStream {
 public:
  /// The descriptor and `interruption` stay open and alive as long as the stream.
  TextStream(int descriptor, Interruption& interruption)
      : descriptor(descriptor), interruption(&interruption) {}

  /// Throws OutputClosed, Interrupted, or std::system_error when the text cannot be written.
  void write(std::string_view text);

  [[nodiscard]] int file() const { return descriptor; }
  [[nodiscard]] bool isTerminal() const;
  /// The width of the terminal; 80 when it does not tell.
  [[nodiscard]] std::size_t columns() const;

 private:
  int descriptor;
  Interruption* interruption;
};

}  // namespace corvane
