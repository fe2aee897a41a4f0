# What the targets of a release have in common: the compiler that scripts/release has laid out, and only
# the libraries that it has built. The environment says where they are, as CMake reads this file anew
# for each of its trials.
set(CMAKE_C_COMPILER $ENV{CORVANE_RELEASE_COMPILER}/cc)
set(CMAKE_CXX_COMPILER $ENV{CORVANE_RELEASE_COMPILER}/c++)
set(CMAKE_AR $ENV{CORVANE_RELEASE_COMPILER}/ar)
set(CMAKE_RANLIB $ENV{CORVANE_RELEASE_COMPILER}/ranlib)
set(CMAKE_C_COMPILER_TARGET ${CORVANE_TRIPLE})
set(CMAKE_CXX_COMPILER_TARGET ${CORVANE_TRIPLE})

# The same bytes wherever the folders lie.
set(same_everywhere "-g0 -ffile-prefix-map=${CMAKE_SOURCE_DIR}=.")
string(APPEND same_everywhere " -ffile-prefix-map=${CMAKE_BINARY_DIR}=build")
string(APPEND same_everywhere " -ffile-prefix-map=$ENV{CORVANE_RELEASE_CACHE}=cache")
# Optimised even in CMake's trials: the compiler builds its C++ runtime anew for a build that is not.
set(CMAKE_C_FLAGS_INIT "-O2 ${same_everywhere}")
set(CMAKE_CXX_FLAGS_INIT "-O2 ${same_everywhere}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-s")

set(CMAKE_FIND_ROOT_PATH $ENV{CORVANE_RELEASE_LIBRARIES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
