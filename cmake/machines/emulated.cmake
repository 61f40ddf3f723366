# clang with the distribution's libraries for CMAKE_SYSTEM_PROCESSOR, run under the emulator. GCC's cross compilers cannot
# be installed together with its 32-bit libraries.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET ${CMAKE_SYSTEM_PROCESSOR}-linux-gnu)
set(CMAKE_CXX_COMPILER_TARGET ${CMAKE_SYSTEM_PROCESSOR}-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR};-L;/usr/${CMAKE_SYSTEM_PROCESSOR}-linux-gnu)
