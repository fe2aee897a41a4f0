set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CORVANE_TRIPLE x86_64-macos.13.0)
# Never run, but CMake insists on one beside an assembler for this system.
set(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-19)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
