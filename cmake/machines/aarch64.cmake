# 64-bit ARM: `cmake --preset aarch64`.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/emulated.cmake)
