# Big-endian, 64 bits: `cmake --preset s390x`.
set(CMAKE_SYSTEM_PROCESSOR s390x)
include(${CMAKE_CURRENT_LIST_DIR}/emulated.cmake)
