set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CORVANE_TRIPLE aarch64-macos.13.0)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
