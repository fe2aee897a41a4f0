#include "CorvaneCore/text/Uuid.h"

#include <cstdint>
#include <random>

namespace corvane {

namespace {

bool isDashPosition(std::size_t position) {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

constexpr std::size_t uuidLength = 36;

}  // namespace

std::string makeRequestId() {
  std::random_device system;
  std::string id(uuidLength, '-');
  std::uint32_t bits = 0;
  unsigned nibblesLeft = 0;
  for (std::size_t i = 0; i < uuidLength; ++i) {
    if (isDashPosition(i)) continue;
    if (nibblesLeft == 0) {
      bits = system();
      nibblesLeft = 8;
    }
    id[i] = "0123456789abcdef"[bits & 15];
    bits >>= 4;
    --nibblesLeft;
  }
  constexpr std::size_t versionAt = 14;
  constexpr std::size_t variantAt = 19;
  id[versionAt] = '4';
  id[variantAt] = "89ab"[system() & 3];
  return id;
}

std::optional<std::string> parseRequestId(std::string_view text) {
  if (text.size() != uuidLength) return std::nullopt;
  std::string id(text);
  for (std::size_t i = 0; i < uuidLength; ++i) {
    char& c = id[i];
    if (c >= 'A' && c <= 'F') c = static_cast<char>(c - 'A' + 'a');
    const bool hex = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
    if (isDashPosition(i) ? c != '-' : !hex) return std::nullopt;
  }
  return id;
}

}  // namespace corvane
