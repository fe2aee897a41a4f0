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

}  // namespace corvane
