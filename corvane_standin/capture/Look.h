#pragma once

#include <string_view>

#include "corvane_standin/capture/Colour.h"

namespace corvane::standin {

/// The colours of an app.
struct Look {
  Colour accent;
  /// A pale version of it, for what is chosen or set apart.
  Colour accentTint;
  Colour ground = rgb(0xF5F4F0);
  Colour card = white;
  Colour ink = rgb(0x1C1D1F);
  Colour quiet = rgb(0x6E6F75);
  Colour line = rgb(0xE0DED8);
  Colour disabled = rgb(0xC9C8C4);
  Colour danger = rgb(0xC8352B);
};

/// Every app has an accent of its own, always the same one.
[[nodiscard]] Look lookOf(std::string_view appName);

}  // namespace corvane::standin
