# Cross build for Windows (i686) with Debian's mingw-w64 (posix threads).
set(CMAKE_SYSTEM_PROCESSOR i686)
set(KELVARY_MINGW_TRIPLE i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-common.cmake)
