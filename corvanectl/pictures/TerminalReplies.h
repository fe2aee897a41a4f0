#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// A length in pixels each way.
struct PixelSize {
  int width = 0;
  int height = 0;

  friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// What a terminal has answered to questions about itself. Takes the bytes as they come, in any
/// pieces; what is no answer is passed over.
class TerminalReplies {
 public:
  void take(std::string_view bytes);
  /// Forgets the bytes of an answer that is not complete, and waits for device attributes anew.
  void expectAttributes();

  /// Whether the primary device attributes came: terminals answer in order, so everything asked
  /// before them has been answered too, or never will be.
  [[nodiscard]] bool haveAttributes() const { return attributesCame; }
  /// Whether the attributes tell of sixel graphics.
  [[nodiscard]] bool knowsSixel() const { return sixel; }
  /// Whether the graphics question was answered with OK.
  [[nodiscard]] bool knowsKittyGraphics() const { return kittyGraphics; }
  /// The name and version that the terminal gives itself; empty when it does not tell.
  [[nodiscard]] const std::string& name() const { return terminalName; }
  /// The size of a character cell.
  [[nodiscard]] std::optional<PixelSize> cellSize() const { return cell; }

 private:
  /// Takes the first answer off `pending`; false when there is none that is complete.
  bool takeOne();
  void takeControl(std::string_view parameters, char final);

  std::string pending;
  bool attributesCame = false;
  bool sixel = false;
  bool kittyGraphics = false;
  std::string terminalName;
  std::optional<PixelSize> cell;
};

}  // namespace corvane
