set(CPACK_PACKAGE_NAME corvane-mcp-standin)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Stand-in for Corvane.app, to try corvane-mcp without it")
set(CPACK_PACKAGE_DESCRIPTION "It does the app's part of every request, with runs and screens that it makes up.")
# It draws with the system's libraries, so it is for the Debian that it was built on.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS corvane-mcp)
