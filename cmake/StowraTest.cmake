# SPDX-License-Identifier: MIT
include(GoogleTest)

# It links a test program several times faster than GNU's linker.
find_program(STOWRA_LLD ld.lld)

# Most of a test's time in the compiler goes into GoogleTest's headers and into optimising. So the headers are compiled
# once, and the test programs are hardly optimised. The code under test is, as ever.
set(STOWRA_TEST_OPTIMISATION -O1)
if(STOWRA_SANITIZE OR STOWRA_COVERAGE OR CMAKE_BUILD_TYPE STREQUAL "Debug")
  set(STOWRA_TEST_OPTIMISATION -O0)
endif()
if(NOT TARGET stowra_test_headers)
  file(CONFIGURE OUTPUT test_headers.cc CONTENT "int main() {}\n")
  add_executable(stowra_test_headers EXCLUDE_FROM_ALL "${CMAKE_CURRENT_BINARY_DIR}/test_headers.cc")
  target_compile_options(stowra_test_headers PRIVATE ${STOWRA_WARNINGS} ${STOWRA_TEST_OPTIMISATION})
  target_link_libraries(stowra_test_headers PRIVATE GTest::gmock)
  target_precompile_headers(stowra_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
endif()

# Seconds, for a machine that is slow and busy. An emulated processor is slower.
set(STOWRA_TEST_TIMEOUT 900)
if(CMAKE_CROSSCOMPILING)
  set(STOWRA_TEST_TIMEOUT 1500)
endif()

# stowra_build_for_labels(<target> <label>...)
#
# Makes the target tests_<label>, which builds what the tests of a label run, build <target>.
function(stowra_build_for_labels target)
  foreach(label IN LISTS ARGN)
    if(NOT TARGET tests_${label})
      add_custom_target(tests_${label})
    endif()
    add_dependencies(tests_${label} ${target})
  endforeach()
endfunction()

# stowra_add_test_program(<name> [LIBRARIES <target>...] [SOURCES <file>...] [LABELS <label>...])
#
# Adds a test program from all *_test.cc in the current folder, or from SOURCES. Each GoogleTest test becomes a CTest
# test. By default it links the rooms' objects with their internals. To test what is shipped, name the shared libraries.
# The tests get the name of the folder as their label, or LABELS. Those that STOWRA_SLOW_TESTS names get "slow", too.
# Those of STOWRA_LARGE_TESTS run one at a time.
function(stowra_add_test_program name)
  cmake_parse_arguments(TEST "" "" "LIBRARIES;SOURCES;LABELS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*_test.cc")
  if(TEST_SOURCES)
    set(sources ${TEST_SOURCES})
  endif()
  if(NOT TEST_LIBRARIES)
    set(TEST_LIBRARIES stowra_all_rooms)
  endif()
  if(NOT TEST_LABELS)
    get_filename_component(TEST_LABELS "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
  endif()
  add_executable(${name} ${sources})
  target_compile_options(${name} PRIVATE ${STOWRA_WARNINGS} ${STOWRA_TEST_OPTIMISATION})
  target_precompile_headers(${name} REUSE_FROM stowra_test_headers)
  if(STOWRA_LLD)
    target_link_options(${name} PRIVATE -fuse-ld=lld)
  endif()
  # These run before a sanitizer is ready. Optimised, they call no function that it instruments.
  set_source_files_properties("${STOWRA_FAILING_MALLOC}" "${STOWRA_FAILING_NEW}" PROPERTIES
    COMPILE_OPTIONS -O1 SKIP_PRECOMPILE_HEADERS ON)
  target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} stowra_test_support GTest::gmock
                                        GTest::gtest_main)
  stowra_build_for_labels(${name} ${TEST_LABELS})
  # Values would bring bytes of memory into the names.
  gtest_discover_tests(${name} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT ${STOWRA_TEST_TIMEOUT})

  # gtest_discover_tests cannot pass on a list of labels. CTest reads this file after the tests.
  list(JOIN STOWRA_SLOW_TESTS "|" slow)
  list(JOIN STOWRA_LARGE_TESTS "|" large)
  file(CONFIGURE OUTPUT ${name}_labels.cmake @ONLY CONTENT [[
foreach(test IN LISTS @name@_TESTS)
  set(labels "@TEST_LABELS@")
  if(test MATCHES "^(@slow@)$")
    list(APPEND labels slow)
    set_tests_properties("${test}" PROPERTIES COST 10)  # begins before the others
  endif()
  if(test MATCHES "^(@large@)$")
    set_tests_properties("${test}" PROPERTIES RESOURCE_LOCK memory)
  endif()
  set_tests_properties("${test}" PROPERTIES LABELS "${labels}")
endforeach()
]])
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES
    "${CMAKE_CURRENT_BINARY_DIR}/${name}_labels.cmake")
endfunction()
