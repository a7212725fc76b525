# The target windows_package makes AccessoryUpdatePage-win64.zip: programs, libraries, resources, the sample and the licences
# of what is in it, to be unpacked anywhere. It makes no folder of its own around
# them. What debuggers want to know of the programs and libraries is in AccessoryUpdatePage-win64-debug.zip.
set(package_targets AccessoriesUpgrade accessory_update_config duilib ipc_client kernel qx_data_report qx_logger
  settings_host update_service pen_studio)
set(stripped_folder ${PROJECT_BINARY_DIR}/package/stripped)
set(debug_folder ${PROJECT_BINARY_DIR}/package/debug)
set(package_files ${CXX_RUNTIME_LIBRARIES})
foreach(target IN LISTS package_targets)
  list(APPEND package_files $<TARGET_FILE:${target}>)
endforeach()
install(DIRECTORY ${stripped_folder}/ DESTINATION .)
# Drawings are PNG files here.
install(DIRECTORY ${PROJECT_BINARY_DIR}/components DESTINATION . PATTERN "*.svg" EXCLUDE)
install(DIRECTORY ${PROJECT_BINARY_DIR}/catalogue/ DESTINATION sample)

# What is missing here shows when the package is made.
function(install_licence name file)
  install(FILES ${file} DESTINATION licences RENAME ${name}.txt)
endfunction()
set(documents /usr/share/doc)
install_licence(mingw-w64 ${documents}/mingw-w64-x86-64-dev/copyright)  # libwinpthread and the start of every program
install_licence(gcc-runtime ${documents}/gcc-mingw-w64-x86-64-posix-runtime/copyright)  # libstdc++ and libgcc
install_licence(GPL-3 /usr/share/common-licenses/GPL-3)  # which that of the runtime names
install_licence(asio ${documents}/libasio-dev/copyright)
install_licence(spdlog ${documents}/libspdlog-dev/copyright)
install_licence(fmt ${documents}/libfmt-dev/copyright)
install_licence(nlohmann-json ${documents}/nlohmann-json3-dev/copyright)
install_licence(CLI11 ${documents}/libcli11-dev/copyright)
file(GLOB pugixml_licence ${BRINDLE_WINDOWS_LIBRARIES}/source/pugixml-*/LICENSE.md)
install_licence(pugixml "${pugixml_licence}")

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME AccessoryUpdatePage-win64)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR})
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
set(CPACK_VERBATIM_VARIABLES ON)
set(BRINDLE_WINDOWS_PACKAGE ${CPACK_PACKAGE_DIRECTORY}/${CPACK_PACKAGE_FILE_NAME}.zip)
set(BRINDLE_WINDOWS_DEBUG_PACKAGE ${CPACK_PACKAGE_DIRECTORY}/${CPACK_PACKAGE_FILE_NAME}-debug.zip)
include(CPack)  # changes the name
add_custom_target(windows_package
  COMMAND ${PROJECT_SOURCE_DIR}/cmake/strip_programs.sh ${CMAKE_OBJCOPY} ${stripped_folder} ${debug_folder} ${package_files}
  COMMAND ${CMAKE_CPACK_COMMAND} --config ${PROJECT_BINARY_DIR}/CPackConfig.cmake
  COMMAND ${CMAKE_COMMAND} -E chdir ${debug_folder} ${CMAKE_COMMAND} -E tar cf ${BRINDLE_WINDOWS_DEBUG_PACKAGE} --format=zip .
  DEPENDS ${package_targets} page_resources
  COMMENT "Making AccessoryUpdatePage-win64.zip and what debuggers want to know of it"
  VERBATIM)
