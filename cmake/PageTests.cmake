# Tests of plug-in code over the fake platform, whose targets tests/fakes and tests/support make.

# use_fake_platform(TARGET): looks for libraries among the fakes first. The search path is written by hand: the same
# names stand in both folders, which is the point. On Windows all that the fakes export is linked before anything else, as
# the linker would mix the imports of two libraries of one name.
function(use_fake_platform target)
  if(WIN32)
    foreach(name ipc_client qx_logger qx_data_report accessory_update_config)
      target_link_options(${target} PRIVATE
        -Wl,--whole-archive,$<TARGET_LINKER_FILE:fake_${name}>,--no-whole-archive)
    endforeach()
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/fake_platform)
    add_dependencies(${target} module_beside_fakes)
  else()
    set_target_properties(${target} PROPERTIES SKIP_BUILD_RPATH ON)
    target_link_options(${target} PRIVATE -Wl,-rpath,${PROJECT_BINARY_DIR}/fake_platform:${PROJECT_BINARY_DIR}/lib)
  endif()
endfunction()

# add_page_test(NAME SOURCES... LIBS...): a GoogleTest program of plug-in code over the fake platform.
function(add_page_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_unit_test(${name} SOURCES ${ARG_SOURCES} $<TARGET_OBJECTS:held_turn> LIBS page_fixture ${ARG_LIBS} LABELS plugin ${ARG_LABELS})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/plugin)
  use_fake_platform(${name})
endfunction()
