# Installs the pretty printers where gdb loads them with the library: in the data folder of gdb, below the path of the
# library, and of the second one if there are two. That path is known only when they are installed.
set(places)
foreach(folder IN ITEMS DATADIR LIBDIR)
  set(place "\${CMAKE_INSTALL_PREFIX}")
  cmake_path(APPEND place "${CMAKE_INSTALL_${folder}}")
  list(APPEND places "${place}")
endforeach()
list(POP_FRONT places data)
if(PAVO_ZORV_X86_64_V3)
  list(APPEND places "${places}/glibc-hwcaps/x86-64-v3")
endif()
foreach(place IN LISTS places)
  install(CODE "
    file(INSTALL [[${PROJECT_SOURCE_DIR}/tools/gdb/pavo_zorv.py]]
      DESTINATION \"${data}/gdb/auto-load${place}\" RENAME libpavo_zorv.so.${PROJECT_VERSION}-gdb.py)"
    COMPONENT development)
endforeach()
