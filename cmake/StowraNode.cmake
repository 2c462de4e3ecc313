# SPDX-License-Identifier: MIT
find_program(STOWRA_NODE node)
find_program(STOWRA_NPM npm)

# Installs the Node packages of all tests. Not part of a build, since it needs npm's registry.
add_custom_target(node_packages)

# stowra_add_node_folder()
#
# Prepares Node scripts for tests. Copies the current folder's *.mjs and package lists to ${STOWRA_NODE_FOLDER} in the
# build, because Node looks for packages beside the script. The target node_packages installs the packages there.
# ${STOWRA_NODE} is empty if Node is missing.
macro(stowra_add_node_folder)
  set(STOWRA_NODE_FOLDER "${CMAKE_CURRENT_BINARY_DIR}/node")
  file(GLOB node_files CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}"
       "${CMAKE_CURRENT_SOURCE_DIR}/*.mjs")
  foreach(name IN LISTS node_files ITEMS package.json package-lock.json)
    configure_file("${name}" "${STOWRA_NODE_FOLDER}/${name}" COPYONLY)
  endforeach()
  if(NOT STOWRA_NODE)
    set(STOWRA_NODE "")
  endif()
  if(STOWRA_NPM)
    set(stamp "${STOWRA_NODE_FOLDER}/packages.stamp")
    add_custom_command(
      OUTPUT "${stamp}"
      COMMAND "${STOWRA_NPM}" ci --ignore-scripts --no-audit --no-fund --loglevel=error
      COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
      DEPENDS package.json package-lock.json
      WORKING_DIRECTORY "${STOWRA_NODE_FOLDER}"
      COMMENT "Installing Node packages in ${STOWRA_NODE_FOLDER}"
      VERBATIM)
    get_filename_component(folder "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
    add_custom_target(node_packages_${folder} DEPENDS "${stamp}")
    add_dependencies(node_packages node_packages_${folder})
  endif()
endmacro()
