add_custom_target(fuzz_targets)

# stowra_add_fuzz_target(<name> [SOURCES <file>...] [LIBRARIES <target>...])
#
# A fuzz target in the current folder: <name>_fuzz.cc, which defines LLVMFuzzerTestOneInput, the dictionary <name>.dict,
# the inputs to begin with in <name>/seeds, and in <name>/findings the inputs that once failed. It links the rooms'
# objects. With the preset "fuzz" it becomes a fuzzer, otherwise a program that runs the target over both folders,
# which is a test.
function(stowra_add_fuzz_target name)
  cmake_parse_arguments(FUZZ "" "" "SOURCES;LIBRARIES" ${ARGN})
  get_filename_component(room "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
  set(program ${room}_${name}_fuzz)
  add_executable(${program} ${name}_fuzz.cc ${FUZZ_SOURCES})
  target_compile_options(${program} PRIVATE ${STOWRA_WARNINGS})
  target_link_libraries(${program} PRIVATE stowra_all_rooms stowra_fuzz_support ${FUZZ_LIBRARIES})
  if(STOWRA_SANITIZE MATCHES fuzzer)
    target_link_options(${program} PRIVATE -fsanitize=fuzzer)
    add_dependencies(fuzz_targets ${program})
    file(GENERATE OUTPUT "${PROJECT_BINARY_DIR}/fuzz/targets/${room}_${name}"
         CONTENT "$<TARGET_FILE:${program}> ${CMAKE_CURRENT_SOURCE_DIR}/${name}\n")
  else()
    target_link_libraries(${program} PRIVATE stowra_fuzz_main)
    add_test(NAME fuzz.${room}.${name}
      COMMAND ${program} "${CMAKE_CURRENT_SOURCE_DIR}/${name}/seeds"
              "${CMAKE_CURRENT_SOURCE_DIR}/${name}/findings")
    set_tests_properties(fuzz.${room}.${name} PROPERTIES TIMEOUT 300)
  endif()
endfunction()
