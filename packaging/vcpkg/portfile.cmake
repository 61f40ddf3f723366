# A port for vcpkg, in a copy of the sources: vcpkg install pavo-zorv --overlay-ports=packaging/vcpkg
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)

vcpkg_check_features(OUT_FEATURE_OPTIONS FEATURE_OPTIONS FEATURES tools PAVO_ZORV_TOOLS)
set(SHARED OFF)
if(VCPKG_LIBRARY_LINKAGE STREQUAL "dynamic")
  set(SHARED ON)
endif()
# One library for each triplet, which selects the processor.
vcpkg_cmake_configure(
  SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS ${FEATURE_OPTIONS} -DBUILD_SHARED_LIBS=${SHARED} -DBUILD_TESTING=OFF -DPAVO_ZORV_X86_64_V3=OFF
    -DPAVO_ZORV_PAGE=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME pavo_zorv CONFIG_PATH lib/cmake/pavo_zorv)
vcpkg_fixup_pkgconfig()
if("tools" IN_LIST FEATURES)
  vcpkg_copy_tools(TOOL_NAMES zorv-inspect AUTO_CLEAN)
endif()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
# The sources state no licence yet.
file(INSTALL "${SOURCE_PATH}/packaging/copyright" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
