# Language level, warnings, floating-point rules and sanitizers: the same for every target.

option(WAVEDECK_BUILD_TESTS "Build the tests" ON)
option(WAVEDECK_BUILD_BENCHMARKS "Build the benchmarks" OFF)
option(WAVEDECK_BUILD_FUZZERS "Build the fuzzers; needs clang and the fuzz preset's sanitizers" OFF)
option(WAVEDECK_WARNINGS_AS_ERRORS "Let warnings stop the build; off for compilers that know other ones" ON)
set(WAVEDECK_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build: Release, Debug, or None for flags of one's own" FORCE)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# Many rules of the measurements hang on NaN, denormals and the order of operations: no fast-math, no contraction to
# fused operations but where a kernel asks for them by name.
# clang counts changes of sign to -Wconversion, GCC does not: both keep to the latter.
add_compile_options(-Wall -Wextra -Wconversion -Wno-sign-conversion
  $<$<BOOL:${WAVEDECK_WARNINGS_AS_ERRORS}>:-Werror> -ffp-contract=off)

if(WAVEDECK_SANITIZE)
  add_compile_options(-fsanitize=${WAVEDECK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${WAVEDECK_SANITIZE})
else()
  add_link_options(-Wl,--no-undefined)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()
