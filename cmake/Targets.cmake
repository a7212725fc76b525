include(GenerateExportHeader)

# add_export_header(NAME)
# Makes include/NAME/export.h in the current build folder: NAME_API marks what that library exports, which is nothing if it is
# a static one. NAME_BUILD tells its own sources from others.
function(add_export_header name)
  string(TOUPPER ${name} upper)
  set_target_properties(${name} PROPERTIES DEFINE_SYMBOL ${upper}_BUILD)
  generate_export_header(${name} EXPORT_MACRO_NAME ${upper}_API EXPORT_FILE_NAME include/${name}/export.h)
  target_include_directories(${name} INTERFACE ${CMAKE_CURRENT_BINARY_DIR}/include)
endfunction()

# add_platform_library(NAME SOURCES... [LIBS...] [PUBLIC_LIBS...])
# A shared library whose public headers stand in include/NAME and whose exports are marked NAME_API.
function(add_platform_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;PUBLIC_LIBS" ${ARGN})
  add_library(${name} SHARED ${ARG_SOURCES})
  add_export_header(${name})
  target_include_directories(${name} PUBLIC include PRIVATE src ${CMAKE_CURRENT_BINARY_DIR}/include)
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE project_warnings ${ARG_LIBS})
endfunction()

# What the sanitizers' runtimes are told; others do not look. ThreadSanitizer does not see the locks of libraries that were not
# built for it (Pango, GLib, Fontconfig), so it ignores what happens inside them.
find_program(LLVM_SYMBOLIZER llvm-symbolizer HINTS /usr/lib/llvm-16/bin)  # names the functions in their reports
set(TEST_ENVIRONMENT
  "ASAN_SYMBOLIZER_PATH=${LLVM_SYMBOLIZER}"
  "ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1"
  "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/leak_suppressions.txt:print_suppressions=0"
  "UBSAN_OPTIONS=print_stacktrace=1"
  "TSAN_OPTIONS=halt_on_error=1:ignore_noninstrumented_modules=1")

# Programs find their libraries beside them, or where Wine is told to look.
if(WIN32)
  list(APPEND TEST_ENVIRONMENT "WINEPATH=${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
endif()

# The headers that tests share, compiled once ahead. Nobody measures tests, so they are compiled as fast as can be.
# Their flags must agree with those of every test, so all have what some get from SDL2 and Cairo.
set(TEST_COMPILE_OPTIONS $<$<CONFIG:Release>:-O0> ${NO_FORTIFY} $<$<BOOL:${UNIX}>:-pthread> $<$<BOOL:${UNIX}>:-D_REENTRANT>)
if(BRINDLE_BUILD_TESTS)
  add_library(test_headers OBJECT ${PROJECT_SOURCE_DIR}/tests/support/test_headers.cpp)
  set_target_properties(test_headers PROPERTIES POSITION_INDEPENDENT_CODE OFF)  # code of programs, as in the tests
  target_compile_options(test_headers PRIVATE ${TEST_COMPILE_OPTIONS} $<$<BOOL:${UNIX}>:-fPIE>)
  target_link_libraries(test_headers PRIVATE project_warnings GTest::gmock GTest::gtest Threads::Threads)
  target_precompile_headers(test_headers PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/test_headers.h)

  add_library(test_time_limit OBJECT ${PROJECT_SOURCE_DIR}/tests/support/time_limit.cpp)
  target_link_libraries(test_time_limit PRIVATE project_warnings GTest::gtest Threads::Threads)

  # For programs whose tests use the toolkit's controls: they list its objects among their sources.
  add_library(held_turn OBJECT ${PROJECT_SOURCE_DIR}/tests/support/held_turn.cpp)
  target_link_libraries(held_turn PRIVATE kernel GTest::gtest project_warnings)
endif()

# add_unit_test(NAME SOURCES... LIBS... [LABELS...] [INCLUDES...])
# One GoogleTest program, registered with CTest. The label "threaded" also runs it under ThreadSanitizer.
function(add_unit_test name)
  if(NOT BRINDLE_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS;INCLUDES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} $<TARGET_OBJECTS:test_time_limit>)
  target_include_directories(${name} PRIVATE ${ARG_INCLUDES} ${PROJECT_SOURCE_DIR}/tests/support)
  target_link_libraries(${name} PRIVATE project_warnings ${ARG_LIBS} base GTest::gmock GTest::gtest GTest::gtest_main Threads::Threads)
  target_compile_options(${name} PRIVATE ${TEST_COMPILE_OPTIONS})
  target_precompile_headers(${name} REUSE_FROM test_headers)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    LABELS "unit;${ARG_LABELS}" TIMEOUT 300 ENVIRONMENT "${TEST_ENVIRONMENT}")
endfunction()
