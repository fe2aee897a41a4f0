# What an installation has beside the programs' own parts, and how all of it goes again. Packages are
# filled from here by scripts/package, so they have the same layout.
include(GNUInstallDirs)
install(TARGETS corvane-mcp corvanectl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# The documents lie to each other as they do here, so that their links hold.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
foreach(folder corvane_standin tests/sessions)
  install(FILES ${folder}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/${folder})
endforeach()
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
  PATTERN node_modules EXCLUDE
  PATTERN __pycache__ EXCLUDE)

# The prefix may be given only when installing. Of a component alone CMake keeps a list of its own.
install(CODE "
  if(NOT CMAKE_INSTALL_COMPONENT)
    file(WRITE \"${CMAKE_BINARY_DIR}/install_prefix.txt\" \"\${CMAKE_INSTALL_PREFIX}\")
  endif()")
add_custom_target(uninstall
  COMMAND ${CMAKE_COMMAND} -D BUILD=${CMAKE_BINARY_DIR} -P ${CMAKE_CURRENT_LIST_DIR}/Uninstall.cmake
  COMMENT "Removing what was installed"
  VERBATIM)
