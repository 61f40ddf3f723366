# How the library is compiled and linked: for the processor that the flags select, and a second time for x86-64-v3.

# The flags with which the compiler touches every page of a stack frame in order, so that no frame skips the guard page;
# empty if it cannot. The code then keeps its frames smaller than a page.
function(pavo_zorv_find_stack_probes result)
  include(CheckCXXSourceCompiles)
  set(flags -fstack-clash-protection)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # Pages have 4 KB; for some processors GCC assumes a larger guard.
    list(APPEND flags --param=stack-clash-protection-guard-size=12)
  endif()
  list(JOIN flags " " CMAKE_REQUIRED_FLAGS)
  # A compiler that ignores the flag says so; on other processors GCC applies it to frames of variable size only.
  check_cxx_source_compiles("
    #if !defined(__x86_64__) && !defined(__i386__) && !defined(__aarch64__) && \
      !defined(__s390x__) && !defined(__powerpc__)
    #error frames are not probed
    #endif
    int main() { return 0; }" pavo_zorv_compiler_probes_frames FAIL_REGEX "argument unused|not supported")
  if(NOT pavo_zorv_compiler_probes_frames)
    set(flags)
  endif()
  set(${result} ${flags} PARENT_SCOPE)
endfunction()

# For everything that compiles code of the core.
pavo_zorv_find_stack_probes(stack_probes)
add_library(pavo_zorv_stack_probes INTERFACE)
if(stack_probes)
  target_compile_options(pavo_zorv_stack_probes INTERFACE "$<$<COMPILE_LANGUAGE:CXX>:${stack_probes}>")
  target_compile_definitions(pavo_zorv_stack_probes INTERFACE PAVO_ZORV_STACK_PROBES)
endif()

# Optimises a release by LEVEL, where CMake would by -O3, unless the user's flags name a level. CMake's own comes after
# CMAKE_CXX_FLAGS, so one that is named there is named again.
function(pavo_zorv_optimise target level)
  string(STRIP "${CMAKE_CXX_FLAGS_RELEASE}" of_release)
  if(NOT of_release STREQUAL "-O3 -DNDEBUG")
    return()
  endif()
  string(REGEX MATCHALL "(^| )-O[^ ]*" of_user "${CMAKE_CXX_FLAGS}")
  if(of_user)
    list(GET of_user -1 level)
    string(STRIP "${level}" level)
  endif()
  target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:${level}>)
endfunction()

# One set of objects, which serves shared and static library, compiled with further flags if any are given.
function(pavo_zorv_objects objects)
  add_library(${objects} OBJECT ${PROJECT_SOURCE_DIR}/src/library.cpp)
  target_compile_features(${objects} PRIVATE cxx_std_20)
  target_include_directories(${objects} PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
  target_compile_options(${objects} PRIVATE
    ${pavo_zorv_warnings} -fno-exceptions -fno-rtti ${ARGN})
  pavo_zorv_optimise(${objects} -O2)
  # So that the linker leaves out of a static program what it does not use (-Wl,--gc-sections).
  target_compile_options(${objects} PRIVATE -ffunction-sections -fdata-sections)
  target_link_libraries(${objects} PRIVATE pavo_zorv_stack_probes)
  set_target_properties(${objects} PROPERTIES
    POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON CXX_EXTENSIONS OFF)
endfunction()

# What the shared and the static library have in common. They are linked as C: no C++ runtime is needed.
function(pavo_zorv_interface library)
  target_include_directories(${library} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  set_target_properties(${library} PROPERTIES OUTPUT_NAME pavo_zorv LINKER_LANGUAGE C)
endfunction()

# With an export list, and without start-up objects: the library needs no initialisation. The loader binds all functions
# at once, so that nothing stays writable afterwards, and no first call takes more stack.
function(pavo_zorv_shared_library library objects)
  add_library(${library} SHARED $<TARGET_OBJECTS:${objects}>)
  pavo_zorv_interface(${library})
  set(export_list ${PROJECT_SOURCE_DIR}/src/pavo_zorv.map)
  set_target_properties(${library} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${pavo_zorv_abi} LINK_DEPENDS ${export_list})
  target_link_options(${library} PRIVATE LINKER:--version-script=${export_list} LINKER:-z,relro LINKER:-z,now)
  # Instrumented code calls a runtime that only the program links.
  if(NOT PAVO_ZORV_SANITIZE AND NOT PAVO_ZORV_COVERAGE AND NOT "${CMAKE_CXX_FLAGS}" MATCHES "-fsanitize=")
    target_link_options(${library} PRIVATE -nostartfiles LINKER:-z,defs LINKER:--as-needed)
  endif()
endfunction()

# Whether a second build for x86-64-v3 makes sense: if the dynamic loader looks for one, the compiler supports it, and
# the flags do not select it already. The loader is that of the C compiler, which links.
function(pavo_zorv_x86_64_v3_makes_sense result)
  include(CheckCSourceCompiles)
  include(CheckCXXCompilerFlag)
  include(CheckCXXSourceCompiles)
  check_cxx_compiler_flag(-march=x86-64-v3 pavo_zorv_compiler_supports_x86_64_v3)
  check_c_source_compiles("
    #include <stdlib.h>
    #if !defined(__linux__) || !defined(__x86_64__) || defined(__ILP32__) || !defined(__GLIBC__)
    #error not x86-64 Linux with glibc
    #elif !__GLIBC_PREREQ(2, 33)
    #error the dynamic loader does not support glibc-hwcaps
    #endif
    int main(void) { return 0; }" pavo_zorv_loader_supports_hwcaps)
  check_cxx_source_compiles("
    #if defined(__AVX2__) && defined(__BMI2__) && defined(__FMA__) && defined(__LZCNT__) && defined(__MOVBE__)
    #error the flags select x86-64-v3 already
    #endif
    int main() { return 0; }" pavo_zorv_flags_below_x86_64_v3)
  if(pavo_zorv_compiler_supports_x86_64_v3 AND pavo_zorv_loader_supports_hwcaps AND pavo_zorv_flags_below_x86_64_v3)
    set(${result} ON PARENT_SCOPE)
  else()
    set(${result} OFF PARENT_SCOPE)
  endif()
endfunction()
