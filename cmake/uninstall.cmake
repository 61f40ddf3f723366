# Removes what was installed: the files that the lists in the build folder name, whole installations and components, and
# the folders of the library's own that are empty then. Run by the target `uninstall`, with BUILD_FOLDER.
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
        message(FATAL_ERROR "cannot be removed: ${file}")
      endif()
    endif()
    cmake_path(GET file PARENT_PATH folder)
    if(folder MATCHES "/(cmake/pavo_zorv|glibc-hwcaps/x86-64-v3|doc/(libpavo-zorv[^/]*|zorv-inspect))$")
      list(APPEND folders "${folder}")
    endif()
    # It has folders for processors alone.
    if(folder MATCHES "^(.*/glibc-hwcaps)/x86-64-v3$")
      list(APPEND folders "${CMAKE_MATCH_1}")
    endif()
  endforeach()
endforeach()

# Deepest first. One that holds something else stays.
list(REMOVE_DUPLICATES folders)
list(SORT folders ORDER DESCENDING)
foreach(folder IN LISTS folders)
  execute_process(COMMAND rmdir "${folder}" ERROR_QUIET)
endforeach()
# What comes to the same places later is somebody else's.
file(REMOVE ${lists})
