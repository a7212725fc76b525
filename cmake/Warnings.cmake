# The one place that chooses compiler warnings: link project_warnings privately.
add_library(project_warnings INTERFACE)
if(MSVC)
  # Classes that are exported have members of the standard library: one runtime is shared by all that is built here.
  target_compile_options(project_warnings INTERFACE /W4 /wd4251 /wd4275 $<$<BOOL:${BRINDLE_WARNINGS_AS_ERRORS}>:/WX>)
else()
  target_compile_options(project_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>  # what base/mutex.h says of locks
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>  # GCC 12 sees overlapping copies in std::string's operator+ that are not there
    $<$<BOOL:${BRINDLE_WARNINGS_AS_ERRORS}>:-Werror>)
endif()
