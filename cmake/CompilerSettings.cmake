# One place for what every target is compiled with. Presets add optimisation and sanitizers.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)

# Presets for developers and CI make warnings errors (CMAKE_COMPILE_WARNING_AS_ERROR); a newer compiler
# than ours must not keep a user from building.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion
                    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
                    $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-Wshadow=local)
  # g++ 12 reports these for correct moves of variants and optionals once it inlines them.
  add_compile_options(-Wno-maybe-uninitialized -Wno-restrict -Wno-stringop-overflow
                      -Wno-array-bounds -Wno-free-nonheap-object)
else()
  # Designated initialisers that name only some members are meant that way.
  add_compile_options(-Wno-missing-field-initializers -Wno-missing-designated-field-initializers)
endif()

option(CORVANE_HARDENED "Stack protector, fortified libc calls, read-only relocations" OFF)
if(CORVANE_HARDENED)
  add_compile_options(-fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  if(NOT APPLE)
    add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
  endif()
endif()

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_SOURCE_DIR}/cmake/compiler-cache)
endif()
