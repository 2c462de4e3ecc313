# How everything in this project is compiled.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_package(Threads REQUIRED)

set(STOWRA_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

# "address,undefined" or "thread"; needs clang++, whose UBSan takes the ignore-list.
set(STOWRA_SANITIZE "" CACHE STRING "Sanitizers to build with")
if(STOWRA_SANITIZE)
  add_compile_options(-fsanitize=${STOWRA_SANITIZE} -fno-omit-frame-pointer -O1)
  add_link_options(-fsanitize=${STOWRA_SANITIZE})
  if(STOWRA_SANITIZE MATCHES undefined)
    add_compile_options(
      -fno-sanitize-recover=undefined
      -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/ubsan_ignore.txt)
  endif()
endif()

# Read by tests/coverage/coverage.sh; needs g++. Threads count, too, hence the atomic counters.
option(STOWRA_COVERAGE "Count which lines and branches are executed" OFF)
if(STOWRA_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic -O0)
  add_link_options(--coverage)
  # Otherwise the shared libraries share one set of counting functions, and none can be unloaded.
  add_link_options(-Wl,--exclude-libs,libgcov.a)
endif()
