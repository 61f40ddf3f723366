# Options, and the compiler flags that follow from them.
option(PAVO_ZORV_TOOLS "Build zorv-inspect if its packages are found" ${PROJECT_IS_TOP_LEVEL})
option(PAVO_ZORV_PAGE "Build zorv-inspect.html with zorv-inspect, in releases, if a compiler for WebAssembly is found" ON)
# The tests are for those who work on the library: asked for by this option, or by CMake's own.
set(pavo_zorv_tests_default OFF)
if(PROJECT_IS_TOP_LEVEL AND BUILD_TESTING)
  set(pavo_zorv_tests_default ON)
endif()
option(PAVO_ZORV_TESTS "Build the tests if their packages are found; not with BUILD_TESTING=OFF" ${pavo_zorv_tests_default})
if(DEFINED BUILD_TESTING AND NOT BUILD_TESTING)
  set(PAVO_ZORV_TESTS OFF)
endif()
option(PAVO_ZORV_EXAMPLES "Build the examples" ${PAVO_ZORV_TESTS})
option(PAVO_ZORV_BENCHMARKS "Build the benchmarks if their packages are found" OFF)
option(PAVO_ZORV_INSTALL "Add the rules for installing" ${PROJECT_IS_TOP_LEVEL})
option(PAVO_ZORV_PACKAGES "Make Debian packages with cpack" OFF)
set(PAVO_ZORV_PACKAGE_MAINTAINER "pavo-zorv maintainers <maintainers@pavo-zorv.invalid>" CACHE STRING
  "Name and mail address of the maintainer in the packages")
set(PAVO_ZORV_HOMEPAGE "" CACHE STRING "Address of the project, if it has one, for packages and pkg-config")
option(PAVO_ZORV_FUZZING "Instrument for libFuzzer and build the fuzzing programs; needs clang" OFF)
option(PAVO_ZORV_REQUIRE_ALL "Fail if a part cannot be built because a package is missing" OFF)
option(PAVO_ZORV_WERROR "Treat warnings as errors" OFF)
option(PAVO_ZORV_COVERAGE "Instrument for coverage" OFF)
set(PAVO_ZORV_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined")

# The second build is for releases; instrumented builds have it only on request.
set(pavo_zorv_x86_64_v3_default OFF)
if(PROJECT_IS_TOP_LEVEL AND (BUILD_SHARED_LIBS OR NOT DEFINED BUILD_SHARED_LIBS) AND NOT PAVO_ZORV_SANITIZE AND NOT PAVO_ZORV_COVERAGE)
  pavo_zorv_x86_64_v3_makes_sense(pavo_zorv_x86_64_v3_default)
endif()
option(PAVO_ZORV_X86_64_V3 "Build the shared library a second time, for x86-64-v3" ${pavo_zorv_x86_64_v3_default})

if(PAVO_ZORV_PACKAGES)
  # The architecture as dpkg-buildpackage or dpkg-architecture say; that of this machine if they say nothing. It has a
  # folder for libraries, under any prefix.
  find_program(dpkg_architecture dpkg-architecture)
  if(NOT dpkg_architecture)
    message(FATAL_ERROR "the packages cannot be built: not found: dpkg-architecture")
  endif()
  execute_process(COMMAND ${dpkg_architecture} --query DEB_HOST_ARCH
    OUTPUT_VARIABLE DEB_HOST_ARCH OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${dpkg_architecture} --host-arch ${DEB_HOST_ARCH} --query DEB_HOST_MULTIARCH
    OUTPUT_VARIABLE DEB_HOST_MULTIARCH OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(CMAKE_INSTALL_LIBDIR lib/${DEB_HOST_MULTIARCH})
  # Debugging information, which becomes packages of its own, names no folder of the machine that builds.
  if(CMAKE_BUILD_TYPE MATCHES "Deb")
    add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=/usr/src/pavo-zorv-${PROJECT_VERSION})
  endif()
endif()
include(GNUInstallDirs)

# Without the note that 32-bit processors may pass vectors in another way: here no other object is handed one.
set(pavo_zorv_warnings -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wno-psabi)
if(PAVO_ZORV_WERROR)
  list(APPEND pavo_zorv_warnings -Werror)
endif()

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
# The seconds that a test may take: under an emulator, many more.
set(pavo_zorv_timeout 300)
if(CMAKE_CROSSCOMPILING_EMULATOR)
  set(pavo_zorv_timeout 3000)
endif()

# Sources of tools and tests are compiled several at once, which halves the time. In a debug build, where single sources
# change, each is compiled by itself, which also detects missing includes.
set(pavo_zorv_several_at_once ON)
if(CMAKE_BUILD_TYPE STREQUAL Debug)
  set(pavo_zorv_several_at_once OFF)
endif()
if(PAVO_ZORV_SANITIZE)
  add_compile_options(-fsanitize=${PAVO_ZORV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  add_link_options(-fsanitize=${PAVO_ZORV_SANITIZE})
endif()
if(PAVO_ZORV_FUZZING)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(PAVO_ZORV_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
  # Each function once, or once for each instantiation, so that a branch in it is one branch.
  add_compile_definitions(PAVO_ZORV_NO_FORCED_INLINING)
endif()

# Finds a program and sets the variable of its name. If it is missing, one line says what is left out, and the variable
# is false.
function(pavo_zorv_program name what)
  find_program(${name} ${name})
  if(NOT ${name} AND PAVO_ZORV_REQUIRE_ALL)
    message(FATAL_ERROR "${what} cannot be built: not found: ${name}")
  elseif(NOT ${name})
    message(STATUS "${what} is left out: not found: ${name}")
  endif()
endfunction()
