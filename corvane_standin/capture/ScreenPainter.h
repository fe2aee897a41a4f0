#pragma once

#include <optional>
#include <string>

#include "corvane_standin/capture/Canvas.h"
#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// The colours that all apps share.
namespace palette {

inline constexpr Colour white = 0xFFFFFF;
inline constexpr Colour black = 0x000000;
inline constexpr Colour ground = 0xF5F4F0;
inline constexpr Colour bar = 0xFBFAF8;
inline constexpr Colour ink = 0x1C1D1F;
inline constexpr Colour quiet = 0x6E6F75;
inline constexpr Colour hairline = 0xE0DED8;
inline constexpr Colour disabled = 0xC9C8C4;
inline constexpr Colour danger = 0xC8352B;

}  // namespace palette

/// What stands out in an app: every app has a colour of its own, always the same one.
[[nodiscard]] Colour accentOf(std::string_view appName);

/// Where on a screen the elements of a kind stand.
enum class Region { titleBar, page, foot, tabBar, dialog, homeScreen };

/// How the elements of a kind are shown.
struct ElementLook {
  Element::Kind kind;
  Region region;
  double height;
  /// Left free above and below.
  double space;
  /// Paints an element into its area and says where a finger would touch it.
  Rect (*paint)(Canvas& canvas, const Element& element, Rect area, Colour accent);
};

[[nodiscard]] const ElementLook& lookOf(Element::Kind kind);

/// A screen as a picture file, and where its target is, in fractions of the picture.
struct PaintedScreen {
  std::string png;
  std::optional<Rect> target;
};

/// The same picture for the same screen. Throws std::runtime_error when it cannot be drawn.
[[nodiscard]] PaintedScreen paint(const Screen& screen);

}  // namespace corvane::standin
