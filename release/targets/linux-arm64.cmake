set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CORVANE_TRIPLE aarch64-linux-gnu.2.28)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
