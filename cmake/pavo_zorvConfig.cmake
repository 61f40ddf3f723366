# For find_package: pavo_zorv::pavo_zorv is the shared library, or the static one where only that is installed.
include(${CMAKE_CURRENT_LIST_DIR}/pavo_zorvTargets.cmake)
if(NOT TARGET pavo_zorv::pavo_zorv)
  add_library(pavo_zorv::pavo_zorv INTERFACE IMPORTED)
  set_target_properties(pavo_zorv::pavo_zorv PROPERTIES INTERFACE_LINK_LIBRARIES pavo_zorv::pavo_zorv_static)
endif()
