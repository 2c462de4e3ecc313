include(GoogleTest)

# stowra_add_test_program(<name> [LIBRARIES <target>...] [SOURCES <file>...])
#
# Adds a test program from all *_test.cc in the current folder, or from SOURCES. Each GoogleTest test becomes a CTest
# test. By default it links the rooms' objects with their internals. To test what is shipped, name the shared libraries.
function(stowra_add_test_program name)
  cmake_parse_arguments(TEST "" "" "LIBRARIES;SOURCES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*_test.cc")
  if(TEST_SOURCES)
    set(sources ${TEST_SOURCES})
  endif()
  if(NOT TEST_LIBRARIES)
    set(TEST_LIBRARIES stowra_all_rooms)
  endif()
  add_executable(${name} ${sources})
  target_compile_options(${name} PRIVATE ${STOWRA_WARNINGS})
  target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} stowra_test_support GTest::gmock
                                        GTest::gtest_main)
  gtest_discover_tests(${name} PROPERTIES TIMEOUT 300 DISCOVERY_TIMEOUT 60)
endfunction()
