# What is installed: the components runtime and development; the tools are a third one.
install(TARGETS ${pavo_zorv_kinds} EXPORT pavo_zorv
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development)
# Where the dynamic loader looks first on processors that support x86-64-v3.
set(second_folder ${CMAKE_INSTALL_LIBDIR}/glibc-hwcaps/x86-64-v3)
if(PAVO_ZORV_X86_64_V3)
  install(TARGETS pavo_zorv_x86_64_v3
    LIBRARY DESTINATION ${second_folder} COMPONENT runtime NAMELINK_SKIP)
elseif(pavo_zorv IN_LIST pavo_zorv_kinds)
  install(CODE "
    cmake_path(APPEND CMAKE_INSTALL_PREFIX [[${second_folder}]] OUTPUT_VARIABLE FOLDER)
    set(FOLDER \"\$ENV{DESTDIR}\${FOLDER}\")
    set(SONAME [[libpavo_zorv.so.${pavo_zorv_abi}]])
    include([[${CMAKE_CURRENT_SOURCE_DIR}/cmake/remove_second_library.cmake]])" COMPONENT runtime)
endif()
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development FILES_MATCHING PATTERN "*.h*")

include(cmake/gdb.cmake)

# For find_package(pavo_zorv 1).
include(CMakePackageConfigHelpers)
set(config_folder ${CMAKE_INSTALL_LIBDIR}/cmake/pavo_zorv)
install(EXPORT pavo_zorv NAMESPACE pavo_zorv:: FILE pavo_zorvTargets.cmake
  DESTINATION ${config_folder} COMPONENT development)
write_basic_package_version_file(pavo_zorvConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_SOURCE_DIR}/cmake/pavo_zorvConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/pavo_zorvConfigVersion.cmake
  DESTINATION ${config_folder} COMPONENT development)

# For pkg-config. The file is written during installation, when the prefix is known.
foreach(folder IN ITEMS LIBDIR INCLUDEDIR)
  set(pc_${folder} "\${prefix}")
  cmake_path(APPEND pc_${folder} ${CMAKE_INSTALL_${folder}})
endforeach()
set(pc_URL)
if(PAVO_ZORV_HOMEPAGE)
  set(pc_URL "URL: ${PAVO_ZORV_HOMEPAGE}\n")
endif()
set(pc_file ${CMAKE_CURRENT_BINARY_DIR}/pavo_zorv.pc)
install(CODE "
  set(PROJECT_VERSION [[${PROJECT_VERSION}]])
  set(PROJECT_DESCRIPTION [[${PROJECT_DESCRIPTION}]])
  set(pc_URL [[${pc_URL}]])
  set(pc_LIBDIR [[${pc_LIBDIR}]])
  set(pc_INCLUDEDIR [[${pc_INCLUDEDIR}]])
  configure_file([[${CMAKE_CURRENT_SOURCE_DIR}/cmake/pavo_zorv.pc.in]] [[${pc_file}]] @ONLY)"
  COMPONENT development)
install(FILES ${pc_file} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# For other languages and tools: the same messages for every Protocol Buffers library, and the script for Wireshark.
set(data_folder ${CMAKE_INSTALL_DATADIR}/pavo_zorv)
install(FILES ${PROJECT_SOURCE_DIR}/proto/zorv.proto DESTINATION ${data_folder} COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/tools/wireshark/zorv.lua DESTINATION ${data_folder} COMPONENT tools)
pavo_zorv_program(protoc "the descriptor set of zorv.proto")
if(protoc)
  set(descriptor_set ${CMAKE_CURRENT_BINARY_DIR}/zorv.desc)
  add_custom_command(OUTPUT ${descriptor_set}
    COMMAND ${protoc} --proto_path=${PROJECT_SOURCE_DIR}/proto --include_source_info
      --descriptor_set_out=${descriptor_set} zorv.proto
    DEPENDS ${PROJECT_SOURCE_DIR}/proto/zorv.proto VERBATIM)
  add_custom_target(pavo_zorv_descriptor_set ALL DEPENDS ${descriptor_set})
  install(FILES ${descriptor_set} DESTINATION ${data_folder} COMPONENT development)
endif()

# Removes all of that.
if(PROJECT_IS_TOP_LEVEL)
  add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} -D BUILD_FOLDER=${CMAKE_BINARY_DIR}
    -P ${CMAKE_CURRENT_SOURCE_DIR}/cmake/uninstall.cmake VERBATIM)
endif()
