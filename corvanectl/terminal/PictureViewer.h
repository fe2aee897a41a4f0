#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "corvanectl/terminal/Console.h"

namespace corvane::ctl {

/// Shows pictures on the terminal that is standard output, by means of the program chafa. Nothing
/// that goes wrong with it is an error: then there is no view of the picture, that is all.
class PictureViewer {
 public:
  /// `console` and `interruption` outlive the viewer. A view that takes longer than `timeout` is
  /// broken off.
  PictureViewer(Console& console, Interruption& interruption,
                Seconds timeout = std::chrono::seconds(10))
      : console(console), interruption(interruption), timeout(timeout) {}

  /// Whether standard output is a terminal on which pictures can be drawn, in colours, and this
  /// program the one that the terminal listens to.
  [[nodiscard]] bool hasScreen() const;

  /// Whether it has a screen and the means to draw on it.
  [[nodiscard]] bool canShow() const;

  /// Shows the picture in `file`, in some rows of their own; the cursor is at the beginning of a
  /// line before and after. Needs a screen. Where chafa is not installed, the first call says so on
  /// standard error. Throws Interrupted and what Console throws.
  void showFile(const std::filesystem::path& file);

  /// The same for a picture that is in no file.
  void showBytes(std::string_view bytes);

 private:
  [[nodiscard]] std::optional<std::filesystem::path> findChafa();
  void run(const std::filesystem::path& chafa, const std::filesystem::path& file);

  Console& console;
  Interruption& interruption;
  Seconds timeout;
  /// Whether the user has been told how to see pictures.
  bool hinted = false;
  /// Whether chafa did not come to an end; it is not given another picture to do that again.
  bool stuck = false;
};

}  // namespace corvane::ctl
