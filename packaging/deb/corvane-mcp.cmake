set(CPACK_PACKAGE_NAME corvane-mcp)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Model Context Protocol server that has Corvane.app test mobile apps")
set(CPACK_PACKAGE_DESCRIPTION
  "A server for coding agents, and corvanectl for people at a terminal and for build machines.")
# All else is inside the programs of a release: one package suits every Debian since version 10.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.28)")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "chafa, corvane-mcp-standin")
