#include "corvanectl/pictures/Base64.h"

#include <array>
#include <cstdint>

namespace corvane {

namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t noDigit = 64;

consteval std::array<std::uint8_t, 256> digitTable() {
  std::array<std::uint8_t, 256> table{};
  table.fill(noDigit);
  for (std::size_t digit = 0; digit < alphabet.size(); ++digit) {
    table[static_cast<unsigned char>(alphabet[digit])] = static_cast<std::uint8_t>(digit);
  }
  return table;
}

}  // namespace

std::optional<std::string> decodeBase64(std::string_view text) {
  static constexpr auto digits = digitTable();
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  std::size_t digitCount = 0;
  std::size_t padding = 0;
  for (const char c : text) {
    if (c == '\n' || c == '\r') continue;
    if (c == '=') {
      ++padding;
      continue;
    }
    const std::uint8_t digit = digits[static_cast<unsigned char>(c)];
    if (digit == noDigit || padding > 0) return std::nullopt;
    bits = bits << 6 | digit;
    // A digit completes a byte unless it begins a group of four.
    const unsigned spareBits = 6 - 2 * (digitCount % 4);
    if (digitCount++ % 4 != 0) bytes += static_cast<char>(bits >> spareBits & 0xFF);
  }
  const bool whole = (digitCount + padding) % 4 == 0 && padding <= 2;
  if (!whole) return std::nullopt;
  return bytes;
}

}  // namespace corvane
