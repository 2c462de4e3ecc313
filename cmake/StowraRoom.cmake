# SPDX-License-Identifier: MIT
# stowra_join_sources(<target>)
#
# Where CMAKE_UNITY_BUILD is on, joins the sources of a target before they are compiled. The sanitizer presets and lint do
# so, which read the headers many times faster then. So names in unnamed namespaces differ within a target.
function(stowra_join_sources target)
  set_target_properties(${target} PROPERTIES
    UNITY_BUILD_BATCH_SIZE 12
    UNITY_BUILD_CODE_BEFORE_INCLUDE "// NOLINTNEXTLINE(bugprone-suspicious-include)")
endfunction()

# stowra_add_room(<name> [LIBRARIES <third-party target>...])
#
# Adds one room of the library, an object library of the .cc files in the current folder. The shared library that holds
# the room links the room's LIBRARIES privately (property STOWRA_PRIVATE_LIBRARIES).
function(stowra_add_room name)
  cmake_parse_arguments(ROOM "" "" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cc")
  add_library(stowra_${name} OBJECT ${sources})
  target_include_directories(stowra_${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_compile_options(stowra_${name} PRIVATE ${STOWRA_WARNINGS})
  target_link_libraries(stowra_${name} PRIVATE ${ROOM_LIBRARIES})
  stowra_join_sources(stowra_${name})
  set_target_properties(stowra_${name} PROPERTIES STOWRA_PRIVATE_LIBRARIES "${ROOM_LIBRARIES}")
endfunction()

# stowra_add_shared_library(<target> EXPORT_NAME <name> ROOMS <room>... [SOURCES <file>...])
#
# Adds a shared library of some rooms. Its SONAME is the major version. Third-party libraries are private. The library
# is never unloaded, because a worker thread and registered observers can outlive its users.
function(stowra_add_shared_library target)
  cmake_parse_arguments(LIB "" "EXPORT_NAME" "ROOMS;SOURCES" ${ARGN})
  add_library(${target} SHARED ${LIB_SOURCES})
  add_library(CommonStowraapi::${LIB_EXPORT_NAME} ALIAS ${target})
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>" "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
  target_compile_features(${target} PUBLIC cxx_std_17)
  stowra_join_sources(${target})
  target_compile_options(${target} PRIVATE ${STOWRA_WARNINGS})
  foreach(room IN LISTS LIB_ROOMS)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:stowra_${room}>)
    get_target_property(private_libraries stowra_${room} STOWRA_PRIVATE_LIBRARIES)
    target_link_libraries(${target} PRIVATE ${private_libraries})
  endforeach()
  set_target_properties(${target} PROPERTIES
    LINKER_LANGUAGE CXX
    EXPORT_NAME ${LIB_EXPORT_NAME}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
  if(NOT APPLE)
    target_link_options(${target} PRIVATE
      -Wl,-z,nodelete
      -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/exports.map")
    if(NOT STOWRA_SANITIZE)
      target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
  endif()
endfunction()
