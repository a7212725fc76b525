# Tests of plug-in code over the fake platform, whose targets tests/fakes and tests/support make.

# link_first(TARGET LIBRARY...): on Windows, all that these libraries export comes from them, although others of the same
# names stand in the same command: the linker would mix the imports of both.
function(link_first target)
  if(NOT WIN32)
    return()
  endif()
  foreach(library IN LISTS ARGN)
    target_link_options(${target} PRIVATE -Wl,--whole-archive,$<TARGET_LINKER_FILE:${library}>,--no-whole-archive)
  endforeach()
endfunction()

# use_fake_platform(TARGET): looks for libraries among the fakes first. The search path is written by hand: the same
# names stand in both folders, which is the point.
function(use_fake_platform target)
  link_first(${target} fake_kernel fake_ipc_client fake_qx_logger fake_qx_data_report fake_accessory_update_config)
  if(WIN32)
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/fakes)
    add_dependencies(${target} module_beside_fakes)
  else()
    set_target_properties(${target} PROPERTIES SKIP_BUILD_RPATH ON)
    target_link_options(${target} PRIVATE -Wl,-rpath,${PROJECT_BINARY_DIR}/fakes:${PROJECT_BINARY_DIR}/lib)
  endif()
endfunction()

# add_page_test(NAME SOURCES... LIBS...): a GoogleTest program of plug-in code over the fake platform.
function(add_page_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_unit_test(${name} SOURCES ${ARG_SOURCES} LIBS page_fixture ${ARG_LIBS} LABELS plugin ${ARG_LABELS})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/plugin)
  use_fake_platform(${name})
endfunction()
