# SPDX-License-Identifier: MIT
include(StowraTest)

add_custom_target(fuzz_targets)

# stowra_add_fuzz_target(<name> [SOURCES <file>...] [LIBRARIES <target>...])
#
# Adds a fuzz target from the current folder. It links the rooms' objects. With the preset "fuzz" it becomes a fuzzer.
# Otherwise it becomes a test that runs the target on the seeds and findings. The files:
#
#   <name>_fuzz.cc    defines LLVMFuzzerTestOneInput
#   <name>.dict       the dictionary
#   <name>/seeds      the inputs to start from
#   <name>/findings   inputs that failed once
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
    set_tests_properties(fuzz.${room}.${name} PROPERTIES TIMEOUT 300 LABELS ${room})
    stowra_build_for_labels(${program} ${room})
  endif()
endfunction()
