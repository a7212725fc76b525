# add_platform_library(NAME SOURCES... [LIBS...] [PUBLIC_LIBS...])
# A shared library whose public headers stand in include/NAME and whose exports are marked NAME_API.
function(add_platform_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;PUBLIC_LIBS" ${ARGN})
  string(TOUPPER ${name} upper)
  add_library(${name} SHARED ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES DEFINE_SYMBOL ${upper}_BUILD)
  target_include_directories(${name} PUBLIC include PRIVATE src)
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE project_warnings ${ARG_LIBS})
endfunction()

# What the sanitizers' runtimes are told; others do not look. ThreadSanitizer does not see the locks of libraries that were not
# built for it (Pango, GLib, Fontconfig), so it ignores what happens inside them.
set(SANITIZER_ENVIRONMENT
  "ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1"
  "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/leak_suppressions.txt:print_suppressions=0"
  "UBSAN_OPTIONS=print_stacktrace=1"
  "TSAN_OPTIONS=halt_on_error=1:ignore_noninstrumented_modules=1")

# add_unit_test(NAME SOURCES... LIBS... [LABELS...] [INCLUDES...])
# One GoogleTest program, registered with CTest. The label "threaded" also runs it under ThreadSanitizer.
function(add_unit_test name)
  if(NOT BRINDLE_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS;INCLUDES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${ARG_INCLUDES} ${CMAKE_SOURCE_DIR}/tests/support/portable)
  target_link_libraries(${name} PRIVATE project_warnings ${ARG_LIBS} GTest::gmock GTest::gtest GTest::gtest_main Threads::Threads)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    LABELS "unit;${ARG_LABELS}" TIMEOUT 300 ENVIRONMENT "${SANITIZER_ENVIRONMENT}")
endfunction()
