# Writes the sample catalogue with the hashes of the packages that were made, and the installer that the system can run.
#   cmake -DINPUT=catalogue.json.in -DFOLDER=.../catalogue -DINSTALLER=install.sh -P sample_catalogue.cmake
if(INSTALLER STREQUAL install.cmd)
  set(INSTALLER [["installers\\install.cmd"]])  # a text for the command interpreter
else()
  set(INSTALLER "[\"installers/${INSTALLER}\"]")
endif()
file(GLOB packages ${FOLDER}/packages/*.pkg)
foreach(package IN LISTS packages)
  get_filename_component(key ${package} NAME_WE)
  file(SHA256 ${package} SHA256_${key})
endforeach()
configure_file(${INPUT} ${FOLDER}/catalogue.json @ONLY)
