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

# Reads the headers that nearly every source includes, and those given, once for a whole target.
function(corvane_precompile target)
  set(headers
    <filesystem> <functional> <map> <optional> <string> <tuple> <variant> <vector>
    ${CMAKE_SOURCE_DIR}/CorvaneCore/json/AgentWire.h
    ${CMAKE_SOURCE_DIR}/CorvaneCore/json/Record.h
    ${ARGN})
  target_precompile_headers(${target} PRIVATE ${headers})
  # ccache does not notice that the list has changed unless the command line does.
  list(JOIN headers "" fingerprint)
  string(REPLACE ${CMAKE_SOURCE_DIR} "" fingerprint "${fingerprint}")
  string(MD5 fingerprint "${fingerprint}")
  target_compile_definitions(${target} PRIVATE CORVANE_PRECOMPILED_${fingerprint})
endfunction()

option(CORVANE_COMPILE_TOGETHER "Compile several sources at a time" OFF)

# Has the sources of a target compiled several at a time where the option is set, for whole runs: most
# of what a source compiles to without optimisation are inline functions that all of them share. Sources
# that use a name for something of their own which another uses as well are listed as APART.
function(corvane_compile_together target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "APART")
  set_target_properties(${target} PROPERTIES
    UNITY_BUILD ${CORVANE_COMPILE_TOGETHER} UNITY_BUILD_BATCH_SIZE 6)
  if(arg_APART)
    get_target_property(directory ${target} SOURCE_DIR)
    list(TRANSFORM arg_APART PREPEND ${directory}/)
    set_source_files_properties(${arg_APART} TARGET_DIRECTORY ${target}
      PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()
