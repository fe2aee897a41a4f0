# What keeps building short where sanitizers and templates make it long.

# Optimisation of the parts that work through much data, in configurations that otherwise have none.
set(CORVANE_HARD_WORK_OPTIONS "" CACHE STRING "Compile options of the libraries that work hardest")

function(corvane_works_hard target)
  target_compile_options(${target} PRIVATE ${CORVANE_HARD_WORK_OPTIONS})
endfunction()

# For programs that wait more than they work: more optimisation gains nothing but a longer build.
function(corvane_waits_mostly target)
  target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
endfunction()

# UBSan looks at what is shipped, not at what tests it or stands in for the app: it takes a third of
# the time that compiling takes.
macro(corvane_directory_without_ubsan)
  add_compile_options(-fno-sanitize=undefined)
endmacro()

# Reads the headers that nearly every source includes, and those given, once for a whole target. They are
# named in angle brackets, without the folder of the checkout, so that the compiler cache serves all of them.
function(corvane_precompile target)
  set(headers
    <filesystem> <functional> <map> <optional> <string> <tuple> <variant> <vector>
    <CorvaneCore/json/AgentWire.h> <CorvaneCore/json/Record.h>
    ${ARGN})
  target_precompile_headers(${target} PRIVATE ${headers})
  # Nor do the times of a checkout's files matter.
  target_compile_options(${target} PRIVATE
    "$<$<CXX_COMPILER_ID:Clang,AppleClang>:SHELL:-Xclang -fno-pch-timestamp>")
  # ccache does not notice that the list has changed unless the command line does.
  list(JOIN headers "" fingerprint)
  string(MD5 fingerprint "${fingerprint}")
  target_compile_definitions(${target} PRIVATE CORVANE_PRECOMPILED_${fingerprint})
endfunction()
