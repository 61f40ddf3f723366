# The Debian package python3-pavo-zorv: what python/ installs, and what Debian requires in addition.
set(python python3-pavo-zorv)
list(APPEND CPACK_COMPONENTS_ALL python)
set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/${python})
install(FILES copyright ${changelog} DESTINATION ${documents} COMPONENT python EXCLUDE_FROM_ALL)
install(FILES ${PROJECT_SOURCE_DIR}/docs/python.md DESTINATION ${documents} COMPONENT python EXCLUDE_FROM_ALL)
install(FILES overrides/${python} DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides
  COMPONENT python EXCLUDE_FROM_ALL)

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME ${python})
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${runtime} (>= ${PROJECT_VERSION}), python3 (>= 3.11)")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_LIST_DIR}/postinst ${CMAKE_CURRENT_LIST_DIR}/prerm)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "segment-routing policy messages - Python 3 package
${about}
This package contains a class for each message for Python 3, with a part that
is compiled, and types for type checkers.")
