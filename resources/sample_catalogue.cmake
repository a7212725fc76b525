# Writes the sample catalogue with the hashes of the packages that were made.
#   cmake -DINPUT=catalogue.json.in -DFOLDER=.../catalogue -P sample_catalogue.cmake
file(GLOB packages ${FOLDER}/packages/*.pkg)
foreach(package IN LISTS packages)
  get_filename_component(key ${package} NAME_WE)
  file(SHA256 ${package} SHA256_${key})
endforeach()
configure_file(${INPUT} ${FOLDER}/catalogue.json @ONLY)
