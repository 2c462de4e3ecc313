find_program(STOWRA_NODE node)
find_program(STOWRA_NPM npm)

# stowra_add_node_folder(<target>)
#
# Node programs for tests: copies the current folder's *.mjs and its lists of packages to ${STOWRA_NODE_FOLDER}, a
# folder of the build, since Node finds packages beside the program. <target> installs the packages there; without npm
# there is none, and the tests say so.
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
