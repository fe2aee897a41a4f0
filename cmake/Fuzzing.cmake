# What fuzzers steer by: every library they reach links corvane_fuzzed and then counts, where the
# fuzzers are built, which of its branches were taken. Programs without a fuzzer's engine ignore the
# counts, so tests and fuzzers share the libraries of one configuration.
option(CORVANE_FUZZERS "Build the fuzzers; needs clang" OFF)

add_library(corvane_fuzzed INTERFACE)
if(CORVANE_FUZZERS)
  target_compile_options(corvane_fuzzed INTERFACE -fsanitize=fuzzer-no-link)
endif()
