# SPDX-License-Identifier: MIT
# stowra_add_benchmark_program(<name> [LIBRARIES <target>...])
#
# Adds a Google Benchmark program from all *_bench.cc in the current folder. It links the shared libraries that are
# shipped.
function(stowra_add_benchmark_program name)
  cmake_parse_arguments(BENCH "" "" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*_bench.cc")
  add_executable(${name} ${sources})
  target_compile_options(${name} PRIVATE ${STOWRA_WARNINGS})
  target_link_libraries(${name} PRIVATE CommonStowraapi::CommonStowraapi CommonStowraapi::Platform
                                        stowra_bench_support ${BENCH_LIBRARIES}
                                        benchmark::benchmark_main)
endfunction()
