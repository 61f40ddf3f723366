# Removes what was installed: the files listed in the manifests of the build folder, of full installations and of
# components, and the folders that only the library uses, if they are empty then. The target `uninstall` runs it, with
# BUILD_FOLDER.
file(GLOB lists "${BUILD_FOLDER}/install_manifest*.txt")
if(NOT lists)
  message(FATAL_ERROR "nothing is installed from ${BUILD_FOLDER}: it has no install_manifest.txt")
endif()

set(folders)
foreach(list IN LISTS lists)
  file(STRINGS "${list}" files)
  foreach(file IN LISTS files)
    set(file "$ENV{DESTDIR}${file}")
    if(EXISTS "${file}" OR IS_SYMLINK "${file}")
      message(STATUS "Removing: ${file}")
      file(REMOVE "${file}")
      if(EXISTS "${file}" OR IS_SYMLINK "${file}")
        message(FATAL_ERROR "cannot remove ${file}")
      endif()
    endif()
    cmake_path(GET file PARENT_PATH folder)
    if(folder MATCHES "/(pavo_zorv|zorv-inspect|glibc-hwcaps/x86-64-v3|doc/libpavo-zorv[^/]*)$")
      list(APPEND folders "${folder}")
    endif()
    # The data of gdb, below the path of the library.
    set(above "${folder}")
    while(above MATCHES "/gdb(/auto-load.*)?$")
      list(APPEND folders "${above}")
      cmake_path(GET above PARENT_PATH above)
    endwhile()
    # It contains folders for processors only.
    if(folder MATCHES "^(.*/glibc-hwcaps)/x86-64-v3$")
      list(APPEND folders "${CMAKE_MATCH_1}")
    endif()
  endforeach()
endforeach()

# Deepest first. Folders that are not empty stay.
list(REMOVE_DUPLICATES folders)
list(SORT folders ORDER DESCENDING)
foreach(folder IN LISTS folders)
  execute_process(COMMAND rmdir "${folder}" ERROR_QUIET)
endforeach()
# Files that appear in the same places later are not ours.
file(REMOVE ${lists})
