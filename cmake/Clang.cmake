# The clang of the sanitizers and fuzzers: Debian's, or Homebrew's, as Apple's has no fuzzer's engine.
set(homebrew /opt/homebrew/opt/llvm/bin /usr/local/opt/llvm/bin)
find_program(CMAKE_C_COMPILER NAMES clang-19 clang HINTS ${homebrew} REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES clang++-19 clang++ HINTS ${homebrew} REQUIRED)
