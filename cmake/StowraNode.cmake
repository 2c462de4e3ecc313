find_program(STOWRA_NODE node)
find_program(STOWRA_NPM npm)

# stowra_add_node_folder(<target>)
#
# Prepares Node scripts for tests. Copies the current folder's *.mjs and package lists to ${STOWRA_NODE_FOLDER} in the
# build, because Node looks for packages beside the script. <target> installs the packages there. Without npm there is
# no such target, and the tests fail and say so.
macro(stowra_add_node_folder target)
  set(STOWRA_NODE_FOLDER "${CMAKE_CURRENT_BINARY_DIR}/node")
  file(GLOB node_files CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}"
       "${CMAKE_CURRENT_SOURCE_DIR}/*.mjs")
  foreach(name IN LISTS node_files ITEMS package.json package-lock.json)
    configure_file("${name}" "${STOWRA_NODE_FOLDER}/${name}" COPYONLY)
  endforeach()
  if(STOWRA_NPM)
    add_custom_command(
      OUTPUT "${STOWRA_NODE_FOLDER}/packages.stamp"
      COMMAND "${STOWRA_NPM}" ci --ignore-scripts --no-audit --no-fund --loglevel=error
      COMMAND "${CMAKE_COMMAND}" -E touch "${STOWRA_NODE_FOLDER}/packages.stamp"
      DEPENDS package.json package-lock.json
      WORKING_DIRECTORY "${STOWRA_NODE_FOLDER}"
      COMMENT "Installing Node packages for ${target}"
      VERBATIM)
    add_custom_target(${target} ALL DEPENDS "${STOWRA_NODE_FOLDER}/packages.stamp")
  endif()
endmacro()
