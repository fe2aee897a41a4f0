#pragma once

#include <cstddef>

// Sanitizers bring an allocator of their own, and clang and g++ say so in their own ways.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define CORVANE_SANITIZED_ALLOCATOR
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define CORVANE_SANITIZED_ALLOCATOR
#endif

#if defined(CORVANE_SANITIZED_ALLOCATOR)
#include <sanitizer/allocator_interface.h>
#elif defined(__APPLE__)
#include <malloc/malloc.h>
#else
#include <malloc.h>
#endif

namespace corvane::testing {

/// How many bytes this process has allocated and not freed.
[[nodiscard]] inline std::size_t allocatedBytes() {
#if defined(CORVANE_SANITIZED_ALLOCATOR)
  return __sanitizer_get_current_allocated_bytes();
#elif defined(__APPLE__)
  return mstats().bytes_used;
#else
  const auto use = ::mallinfo2();
  return use.uordblks + use.hblkhd;
#endif
}

}  // namespace corvane::testing
