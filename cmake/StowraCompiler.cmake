# SPDX-License-Identifier: MIT
# Compiler settings for the whole project.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Its vector extensions are complete from that release on.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 12)
  message(FATAL_ERROR "CommonStowraapi needs g++ 12 or later, or clang++")
endif()

find_package(Threads REQUIRED)

set(STOWRA_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(STOWRA_WARNINGS_AS_ERRORS)
  list(APPEND STOWRA_WARNINGS -Werror)
endif()

# "address,undefined" or "thread". Needs clang++, because only its UBSan accepts an ignore-list.
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

# For tests/coverage/coverage.sh. Needs g++. The counters are atomic, because threads share them.
option(STOWRA_COVERAGE "Count which lines and branches are executed" OFF)
if(STOWRA_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic -O0)
  add_link_options(--coverage)
  # Gives each shared library its own counting functions, so that it can be unloaded.
  add_link_options(-Wl,--exclude-libs,libgcov.a)
endif()
