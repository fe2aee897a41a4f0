#include "corvane_standin/capture/Look.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace corvane::standin {

Look lookOf(std::string_view appName) {
  constexpr std::array accents{rgb(0x1F7A6B), rgb(0xB4532A), rgb(0x3A5BC7),
                               rgb(0x7A3E9D), rgb(0xA33B5C), rgb(0x2E6F9E)};
  std::uint32_t sum = 0;
  for (const char c : appName) sum = sum * 31 + static_cast<unsigned char>(c);
  Look look;
  look.accent = accents[sum % accents.size()];
  constexpr double tint = 0.12;
  look.accentTint = mixed(white, look.accent, tint);
  return look;
}

}  // namespace corvane::standin
