# SPDX-License-Identifier: MIT
# The target stowra_rapidjson: RapidJSON's headers.
#
# Release 1.1.0 has an operator that assigns to const members. Nobody calls it, but some compilers refuse it all the same,
# as clang does from release 19 on. For them the build has its own copy of the headers, without that operator.
include(CheckCXXSourceCompiles)
find_package(RapidJSON REQUIRED)

function(stowra_check_rapidjson result headers)
  set(CMAKE_REQUIRED_INCLUDES ${headers})
  check_cxx_source_compiles("
    #include <rapidjson/document.h>
    int main() { return rapidjson::Document().IsNull() ? 0 : 1; }" ${result})
endfunction()

set(rapidjson_headers ${RAPIDJSON_INCLUDE_DIRS})
stowra_check_rapidjson(STOWRA_RAPIDJSON_COMPILES "${rapidjson_headers}")
if(NOT STOWRA_RAPIDJSON_COMPILES)
  set(own_copy "${PROJECT_BINARY_DIR}/rapidjson")
  if(NOT EXISTS "${own_copy}")
    foreach(folder IN LISTS rapidjson_headers)
      file(COPY "${folder}/rapidjson" DESTINATION "${own_copy}")
    endforeach()
    set(header "${own_copy}/rapidjson/document.h")
    file(READ "${header}" text)
    string(REPLACE
      "GenericStringRef& operator=(const GenericStringRef& rhs) { s = rhs.s; length = rhs.length; }"
      "GenericStringRef& operator=(const GenericStringRef& rhs) = delete;" text "${text}")
    file(WRITE "${header}" "${text}")
  endif()
  set(rapidjson_headers "${own_copy}")
  stowra_check_rapidjson(STOWRA_RAPIDJSON_COPY_COMPILES "${rapidjson_headers}")
  if(NOT STOWRA_RAPIDJSON_COPY_COMPILES)
    message(FATAL_ERROR "The compiler refuses RapidJSON's headers for a reason that is not known here")
  endif()
  message(STATUS "RapidJSON's headers are mended in ${own_copy}")
endif()

add_library(stowra_rapidjson INTERFACE)
target_include_directories(stowra_rapidjson SYSTEM INTERFACE ${rapidjson_headers})
