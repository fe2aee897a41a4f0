#include "corvane_standin/program/Ids.h"

#include <cstdint>
#include <cstdio>

#include "CorvaneCore/text/Uuid.h"

namespace corvane::standin {

namespace {

/// FNV-1a, from a beginning of its own.
std::uint64_t hash(std::string_view text, std::uint64_t beginning) {
  constexpr std::uint64_t prime = 0x100000001b3;
  for (const char c : text) beginning = (beginning ^ static_cast<unsigned char>(c)) * prime;
  return beginning;
}

}  // namespace

std::string Ids::make(std::string_view sort, std::string_view owner, std::string_view name) const {
  if (source == IdSource::random) return makeRequestId();
  std::string text;
  text.append(sort).append("\n").append(owner).append("\n").append(name);
  const std::uint64_t high = hash(text, 0xcbf29ce484222325);
  const std::uint64_t low = hash(text, high);
  // Version 8 is for ids of one's own making, and 8 to b begin the variant of all of them.
  std::string id(sizeof "01234567-0123-8123-8123-0123456789ab" - 1, '\0');
  std::snprintf(id.data(), id.size() + 1, "%08x-%04x-8%03x-8%03x-%012llx",
                static_cast<unsigned>(high >> 32U), static_cast<unsigned>(high >> 16U & 0xFFFFU),
                static_cast<unsigned>(high & 0xFFFU), static_cast<unsigned>(low >> 48U & 0xFFFU),
                static_cast<unsigned long long>(low & 0xFFFF'FFFF'FFFFU));
  return id;
}

}  // namespace corvane::standin
