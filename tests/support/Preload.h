#pragma once

namespace corvane::testing {

/// The variable that names libraries for a program to load before its own.
#ifdef __APPLE__
inline constexpr const char* preloadVariable = "DYLD_INSERT_LIBRARIES";
#else
inline constexpr const char* preloadVariable = "LD_PRELOAD";
#endif

}  // namespace corvane::testing
