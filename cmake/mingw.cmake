# Toolchain: 64-bit Windows with Debian's mingw-w64 (posix threads), one shared C++ runtime beside the programs, so that
# strings and exceptions cross the borders of libraries. Programs of the build run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(prefix x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${prefix}-gcc-posix)
set(CMAKE_CXX_COMPILER ${prefix}-g++-posix)
set(CMAKE_RC_COMPILER ${prefix}-windres)
set(CMAKE_CXX_FLAGS_RELEASE_INIT "-g1")  # names and lines, which the package keeps beside it
find_program(WINE wine64 wine HINTS /usr/lib/wine)  # Debian's wine complains of 32-bit programs that it cannot run
set(CMAKE_CROSSCOMPILING_EMULATOR ${WINE})

# What cmake/windows_libraries.sh made, and nothing of the building system.
set(BRINDLE_WINDOWS_LIBRARIES "${CMAKE_CURRENT_LIST_DIR}/../build/windows-libraries")
set(CMAKE_FIND_ROOT_PATH /usr/${prefix} ${BRINDLE_WINDOWS_LIBRARIES})
set(CMAKE_PREFIX_PATH ${BRINDLE_WINDOWS_LIBRARIES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
