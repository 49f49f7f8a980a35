# What both Windows cross builds share, once the including toolchain file has
# set CMAKE_SYSTEM_PROCESSOR and KELVARY_MINGW_TRIPLE. Everything links
# statically: the in-process server must load into a host that has neither
# the compiler's runtime nor SQLite next to it, and on i686 a shared C++
# runtime paired with a static libgcc loses exceptions thrown across the
# boundary.
set(CMAKE_SYSTEM_NAME Windows)

set(CMAKE_C_COMPILER ${KELVARY_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KELVARY_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${KELVARY_MINGW_TRIPLE}-windres)
set(KELVARY_WIDL ${KELVARY_MINGW_TRIPLE}-widl)

set(CMAKE_FIND_ROOT_PATH /usr/${KELVARY_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
# A library found by its full path (odbc32) is otherwise bracketed with
# -Bstatic ... -Bdynamic, which leaves the compiler's own runtime to be
# linked dynamically after it.
set(CMAKE_LINK_SEARCH_END_STATIC ON)
