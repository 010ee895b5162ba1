# The kinds of target that the tree is made of. Each has an include directory of its own, so that a header of a layer
# that a target does not depend on cannot be included.

# wavedeck_module(NAME SOURCES ... DEPENDS ... [INCLUDE dir]): a static, position-independent library over the headers
# of the current folder. Calculating modules depend on no host target; filters and strategies do.
function(wavedeck_module name)
  cmake_parse_arguments(ARG "" "INCLUDE" "SOURCES;DEPENDS" ${ARGN})
  if(NOT ARG_INCLUDE)
    set(ARG_INCLUDE ${CMAKE_CURRENT_SOURCE_DIR})
  endif()
  if(ARG_SOURCES)
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${ARG_INCLUDE}>)
    target_link_libraries(${name} PUBLIC ${ARG_DEPENDS})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE $<BUILD_INTERFACE:${ARG_INCLUDE}>)
    target_link_libraries(${name} INTERFACE ${ARG_DEPENDS})
  endif()
endfunction()

# wavedeck_precompile(NAME): precompiles the headers of Poco and Boost that every stage pulls in.
function(wavedeck_precompile name)
  target_precompile_headers(${name} PRIVATE
    <Poco/JSON/Object.h> <Poco/JSON/Array.h> <Poco/SharedPtr.h> <boost/any.hpp> <functional> <memory> <string> <unordered_map>
    <vector>)
endfunction()

# wavedeck_test(NAME [STAGES] SOURCES ... DEPENDS ...): a GoogleTest program whose cases CTest runs one by one. With STAGES
# it drives stages that it loads from the library by name.
function(wavedeck_test name)
  cmake_parse_arguments(ARG "STAGES" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE test_support ${ARG_DEPENDS} GTest::gtest_main)
  if(ARG_STAGES)
    target_link_libraries(${name} PRIVATE wavedeck_driver)
    add_dependencies(${name} dspwavedecksimpl)
    target_compile_definitions(${name} PRIVATE STAGE_LIBRARY="$<TARGET_FILE:dspwavedecksimpl>")
  endif()
  include(GoogleTest)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
endfunction()

# wavedeck_benchmark(NAME SOURCES ... DEPENDS ...): a Google Benchmark program; run by hand, never as a timed test.
function(wavedeck_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/bench/support)
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} benchmark::benchmark benchmark::benchmark_main)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()
