# SPDX-License-Identifier: MIT
# cmake -DFOLDER=... -P try.cmake
#
# Runs the port without vcpkg: its functions configure, build and install with CMake below FOLDER. Fails if a file
# of the package is missing.
cmake_minimum_required(VERSION 3.25)
set(port "${CMAKE_CURRENT_LIST_DIR}/common-stowraapi")
set(CURRENT_PACKAGES_DIR "${FOLDER}/packages")
set(FEATURES core)

function(vcpkg_check_linkage)
endfunction()
function(vcpkg_check_features)
  cmake_parse_arguments(CHECK "" "OUT_FEATURE_OPTIONS" "FEATURES" ${ARGN})
  list(GET CHECK_FEATURES 1 option)
  set(${CHECK_OUT_FEATURE_OPTIONS} "-D${option}=OFF" PARENT_SCOPE)
endfunction()
function(vcpkg_cmake_configure)
  cmake_parse_arguments(CONFIGURE "" "SOURCE_PATH" "OPTIONS" ${ARGN})
  execute_process(COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET COMMAND ${CMAKE_COMMAND} -G Ninja -S "${CONFIGURE_SOURCE_PATH}"
    -B "${FOLDER}/build" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=${CURRENT_PACKAGES_DIR}
    -DCMAKE_INSTALL_LIBDIR=lib ${CONFIGURE_OPTIONS})
endfunction()
function(vcpkg_cmake_install)
  execute_process(COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET COMMAND ${CMAKE_COMMAND} --build "${FOLDER}/build" --target install)
endfunction()
function(vcpkg_cmake_config_fixup)
  cmake_parse_arguments(FIXUP "" "PACKAGE_NAME;CONFIG_PATH" "" ${ARGN})
  file(RENAME "${CURRENT_PACKAGES_DIR}/${FIXUP_CONFIG_PATH}" "${CURRENT_PACKAGES_DIR}/share/${FIXUP_PACKAGE_NAME}")
endfunction()
function(vcpkg_fixup_pkgconfig)
endfunction()
function(vcpkg_install_copyright)
  cmake_parse_arguments(INSTALL "" "" "FILE_LIST" ${ARGN})
  file(INSTALL ${INSTALL_FILE_LIST} DESTINATION "${CURRENT_PACKAGES_DIR}/share/common-stowraapi" RENAME copyright)
endfunction()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}")
file(MAKE_DIRECTORY "${CURRENT_PACKAGES_DIR}/share")
include("${port}/portfile.cmake")
foreach(file IN ITEMS include/common_stowraapi/common_stowraapi.h share/CommonStowraapi/CommonStowraapiConfig.cmake
        lib/pkgconfig/common_stowraapi.pc share/common-stowraapi/copyright)
  if(NOT EXISTS "${CURRENT_PACKAGES_DIR}/${file}")
    message(FATAL_ERROR "the port installs no ${file}")
  endif()
endforeach()
message("the port installs what a package needs")
