#include "CorvaneCore/text/Base64.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace corvane {

namespace {

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// Two digits at a time: the ones for every 12 bits.
constexpr auto digitPairs = [] {
  std::array<std::array<char, 2>, 4096> pairs{};
  for (std::size_t bits = 0; bits < pairs.size(); ++bits) {
    pairs[bits] = {digits[bits >> 6], digits[bits & 63]};
  }
  return pairs;
}();

constexpr std::uint8_t noDigit = 64;

/// What every byte stands for as a digit.
constexpr auto digitValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(noDigit);
  for (std::size_t value = 0; value < digits.size(); ++value) {
    values[static_cast<unsigned char>(digits[value])] = static_cast<std::uint8_t>(value);
  }
  return values;
}();

}  // namespace

std::string base64(std::string_view bytes) {
  const auto byteAt = [bytes](std::size_t i) {
    return i < bytes.size() ? std::uint32_t{static_cast<std::uint8_t>(bytes[i])} : 0;
  };
  std::string text((bytes.size() + 2) / 3 * 4, '=');
  char* out = text.data();
  std::size_t i = 0;
  for (; i + 3 <= bytes.size(); i += 3, out += 4) {
    const std::uint32_t bits = byteAt(i) << 16 | byteAt(i + 1) << 8 | byteAt(i + 2);
    std::memcpy(out, digitPairs[bits >> 12].data(), 2);
    std::memcpy(out + 2, digitPairs[bits & 0xFFF].data(), 2);
  }
  if (i < bytes.size()) {
    const std::uint32_t bits = byteAt(i) << 16 | byteAt(i + 1) << 8;
    std::memcpy(out, digitPairs[bits >> 12].data(), 2);
    if (i + 2 == bytes.size()) out[2] = digits[bits >> 6 & 63];
  }
  return text;
}

std::optional<std::string> decodeBase64(std::string_view text) {
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
    const std::uint8_t digit = digitValues[static_cast<unsigned char>(c)];
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
