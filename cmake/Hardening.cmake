# Release builds check their stacks and buffers, and bind all symbols before the program starts, in memory that is then made
# read-only. mingw's stack and buffer checks would need a library beside the programs (libssp), so there is only what its
# linker does.
include(CheckPIESupported)
check_pie_supported()  # with CMAKE_POSITION_INDEPENDENT_CODE programs are linked with -pie
set(NO_FORTIFY)  # for what is not optimised: the checks of buffers need it
if(MINGW)
  add_link_options(-Wl,--dynamicbase,--nxcompat,--high-entropy-va)
elseif(UNIX)
  add_compile_options("$<$<CONFIG:Release>:-fstack-protector-strong;-fstack-clash-protection;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  add_link_options("$<$<CONFIG:Release>:-Wl,-z,relro,-z,now,-z,noexecstack>")
  set(NO_FORTIFY $<$<CONFIG:Release>:-U_FORTIFY_SOURCE>)
endif()
